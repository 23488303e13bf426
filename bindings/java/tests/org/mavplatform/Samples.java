// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

/** The platforms that the build has packed. */
final class Samples {
    static final Path ROOT = Path.of(System.getProperty("mav.samples"));
    static final String CARD = ROOT.resolve("veltrin_h90/veltrin_h90.pka").toString();
    static final String EMBEDDED = ROOT.resolve("ostrivel_e7/ostrivel_e7.qpfm").toString();

    private Samples() {}

    /** Every file that is a platform. */
    static List<String> platforms() throws IOException {
        try (var files = Files.walk(ROOT)) {
            return files.map(Path::toString)
                    .filter(name -> name.matches(".*\\.(qpfm|pka|dsa|spfm)"))
                    .sorted()
                    .toList();
        }
    }
}
