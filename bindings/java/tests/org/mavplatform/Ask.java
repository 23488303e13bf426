// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStreamReader;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.logging.Level;

/** Answers questions through the Java package; questions and answers as in ask.c. */
final class Ask {
    private static final int DONE = 0;
    private static final int NOT_FOUND = 2;
    private static final int NOT_LOADABLE = 3;

    private Ask() {}

    /** A code with nothing to say. */
    private static final class Nothing extends RuntimeException {
        private static final long serialVersionUID = 1;
    }

    private static <T> T found(T answer) {
        if (answer == null) throw new Nothing();
        return answer;
    }

    private static String documentation(String key) {
        var service = new NativeDocService();
        var doc = new PropertyTree();
        if (!service.isValidDocKey(doc, key)) throw new Nothing();
        return service.getDocKeyBranch(doc, key).toJson();
    }

    private static String ofPlatform(String what, PlatformLoader loader, String with) {
        return switch (what) {
            case "get" -> found(new NativeObjectService().getObjectsByPath(loader, with)).toJson();
            case "dict" -> NativeDictService.getAsJsonStr(
                    found(new NativeDictService().getAsDict(loader, with)));
            case "keys" -> new NativeKeyService().getAsJsonStr(loader);
            case "transform" -> new NativeTransformService().getAsJsonStr(loader, with);
            case "supported" -> {
                var service = new NativeCatalogService();
                service.setTestCompilerVersion_(with);
                yield String.valueOf(service.isUnderWarranty(loader, new StringBuilder()));
            }
            default -> throw new IllegalArgumentException(what);
        };
    }

    private static String answer(String what, String file, String with) {
        switch (what) {
            case "doc":
                return documentation(with);
            case "errors":
                return String.valueOf(
                        PlatformCheck.run(file).stream()
                                .filter(one -> one.getSeverity() == CheckFinding.Severity.ERROR)
                                .count());
            case "digest":
                return '"' + HUTZip.verifyDigest(file).toString().toLowerCase() + '"';
            case "members":
                return String.valueOf(new ZipArchive(file).members().size());
            default:
                if (!Files.exists(Path.of(file))) throw new Nothing();
        }
        try (var loader = new PlatformLoader(file)) {
            loader.load();
            return ofPlatform(what, loader, with);
        }
    }

    public static void main(String[] arguments) throws IOException {
        Messages.LOGGER.setLevel(Level.OFF);
        var in = new BufferedReader(new InputStreamReader(System.in, StandardCharsets.UTF_8));
        var out = new PrintStream(System.out, true, StandardCharsets.UTF_8);
        for (String line; (line = in.readLine()) != null; ) {
            String[] question = line.split("\t", -1);
            int code = DONE;
            String text = "";
            try {
                text = answer(question[0], question[1], question[2]);
            } catch (Nothing nothing) {
                code = NOT_FOUND;
            } catch (PlatformParseException fault) {
                code = NOT_LOADABLE;
            }
            out.print(code + " " + text.getBytes(StandardCharsets.UTF_8).length + "\n" + text + "\n");
        }
        out.flush();
    }
}
