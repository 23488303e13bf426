// SPDX-License-Identifier: Apache-2.0
// A table of platforms with their verdicts. Usage: PlatformTable FILE-OR-FOLDER...
//
// Build and run it with what the package installs:
//   javac -cp /usr/share/java/mav-platform.jar PlatformTable.java
//   java -cp /usr/share/java/mav-platform.jar:. PlatformTable folder
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.logging.Level;
import org.mavplatform.HEXError;
import org.mavplatform.HMAVPlatform;
import org.mavplatform.Messages;
import org.mavplatform.NativeCatalogService;
import org.mavplatform.NativePlatformRepoService;
import org.mavplatform.PlatformLoader;
import org.mavplatform.PlatformParseException;
import org.mavplatform.Verdict;

public final class PlatformTable {
    private PlatformTable() {}

    /** The descriptions in a folder; a file stands for itself. */
    private static List<String> files(String argument) {
        if (!Files.isDirectory(Path.of(argument))) return List.of(argument);
        return new NativePlatformRepoService()
                .getQpfmFiles("", List.of(argument), false).stream().sorted().toList();
    }

    private static void row(String file) {
        // Everything that the loader hands out belongs to it and is gone after close().
        try (var loader = new PlatformLoader(file)) {
            HMAVPlatform platform = loader.load();
            Verdict verdict = new NativeCatalogService().judge(loader);
            System.out.printf(
                    "%-18s %-28s %s%n",
                    platform.getPlatformBaseName(),
                    platform.getHardwarePlatform() == null
                            ? ""
                            : platform.getHardwarePlatform().getVBNV(),
                    verdict.sentence());
        }
    }

    public static void main(String[] arguments) {
        // What the library tells on its way goes to this logger; the exceptions say enough here.
        Messages.LOGGER.setLevel(Level.OFF);
        try {
            for (String argument : arguments) files(argument).forEach(PlatformTable::row);
        } catch (HEXError | PlatformParseException fault) {
            System.err.println(fault.getMessage());
            System.exit(1);
        }
    }
}
