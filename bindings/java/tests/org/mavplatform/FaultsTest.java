// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;
import org.junit.jupiter.api.DynamicTest;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.TestFactory;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.api.io.TempDir;

class FaultsTest {
    @TempDir Path folder;

    private String file(String name, String text) throws IOException {
        return Files.writeString(folder.resolve(name), text).toString();
    }

    private static PlatformLoader card() {
        return new PlatformLoader(Samples.CARD);
    }

    private static HPLPlatform hardware() {
        return card().load().getHardwarePlatform();
    }

    private static HMAVHardwareFeatureRom rom() {
        return new HMAVHardwareFeatureRom();
    }

    /** What is wrong, and the exception that it is. */
    @TestFactory
    Stream<DynamicTest> faults() {
        var archive = new HVMAArchive(Samples.CARD);
        Map<Class<? extends Throwable>, List<Executable>> rows =
                Map.of(
                        IndexOutOfBoundsException.class,
                        List.of(
                                () -> hardware().getMemories().get(99999),
                                () -> hardware().getMemories().get(-1),
                                () -> rom().getCDMABaseAddress(4),
                                () -> rom().getCDMABaseAddress(1L << 32),
                                () -> rom().getCDMABaseAddress(-1)),
                        IllegalArgumentException.class,
                        List.of(
                                () -> new HMAVPlatform().setDefaultRPId(-1),
                                () -> new HMAVPlatform().setDefaultRPId(1L << 32),
                                () -> hardware().getMemSizeInGb(-1),
                                () -> new JSONValue("text").add(new JSONValue(true))),
                        NullPointerException.class,
                        List.of(
                                () -> new PlatformLoader((String) null),
                                () -> new PlatformLoader(Samples.CARD, null),
                                () -> hardware().getFile((String) null),
                                () -> new NativeKeyService().getAsJsonStr((PlatformLoader) null),
                                () -> new HMAVDsaJsonReader((HPLPlatform) null),
                                () -> new HMAVPlatform().setHardwarePlatform(null),
                                () -> new HMAVPlatform().addSoftwarePlatform(null),
                                () -> new HMAVSoftwarePlatformXMLReader("x", null),
                                () -> new HMAVPlatformMgr().addPlatformsFromDirs(null),
                                () -> HMAVPlatformUtils.filterOutOldPlatforms(null),
                                () -> new NativeCatalogService().canDsaBeOpened(Samples.CARD, null),
                                () -> hardware().setExplicitDesignIntent(null)),
                        HEXFileNotFoundException.class,
                        List.of(() -> new ZipArchive("none"), () -> new PlatformLoader("none.qpfm")),
                        HEXAlgException.class,
                        List.of(
                                () -> HMAVDpeHardware.stringToArch("?"),
                                () -> new HMAVPlatform().setHardwarePlatform(hardware()),
                                () -> HMAVJSONUtils.readJson("")),
                        HEXDataException.class,
                        List.of(() -> new ZipArchive(Samples.CARD).read("none")),
                        HEXUserException.class,
                        List.of(
                                () -> new ZipArchive(file("broken.pka", "PK?")),
                                () -> archive.extract("DCP", "")),
                        PlatformParseException.class,
                        List.of(
                                () -> new PlatformLoader(file("broken.qpfm", "<a")),
                                () -> new PlatformLoader(file("empty.pka", "")).load(),
                                () -> new PlatformLoader("none.pka").load(),
                                () -> new PlatformLoader("").load()),
                        OutOfMemoryError.class,
                        List.of(() -> new ZipArchive(large()).read("large")));
        return rows.entrySet().stream()
                .flatMap(row -> row.getValue().stream().map(call -> fault(row.getKey(), call)));
    }

    private static DynamicTest fault(Class<? extends Throwable> type, Executable call) {
        return DynamicTest.dynamicTest(
                type.getSimpleName(),
                () -> {
                    var thrown = assertThrows(type, call);
                    // Lists of Java have indices of their own; a member of the family is that one.
                    if (thrown instanceof HEXError) assertEquals(type, thrown.getClass());
                });
    }

    /** An archive whose one member is larger than the memory that the tests have. */
    private String large() throws IOException {
        var path = folder.resolve("large.zip");
        try (var out = new java.util.zip.ZipOutputStream(Files.newOutputStream(path))) {
            out.putNextEntry(new java.util.zip.ZipEntry("large"));
            for (int i = 0; i < 64; ++i) out.write(new byte[1 << 20]);
        }
        return path.toString();
    }

    @Test
    void pathsAndPlacesAreCarried() throws IOException {
        var missing =
                assertThrows(HEXFileNotFoundException.class, () -> new PlatformLoader("none.qpfm"));
        assertEquals("none.qpfm", missing.getPath());
        assertEquals("File 'none.qpfm' does not exist", missing.getMessage());
        String path = file("broken.qpfm", "<a\n<b");
        var broken = assertThrows(PlatformParseException.class, () -> new PlatformLoader(path));
        assertEquals(path, broken.getPath());
        assertTrue(broken.getMessages().stream().anyMatch(one -> one.text().contains("2")));
        var absent =
                assertThrows(PlatformParseException.class, () -> new PlatformLoader("no.pka").load());
        assertEquals("no.pka", absent.getPath());
        assertTrue(absent.getMessage().contains("no.pka"), absent.getMessage());
    }

    /** What is closed, and what came from it, is not used any more. */
    @Test
    void closedObjectsRefuse() {
        var loader = card();
        var platform = loader.load();
        var clock = platform.getHardwarePlatform().getSystemClocks().get(0);
        var reader = new HMAVDsaJsonReader(platform.getHardwarePlatform());
        loader.close();
        loader.close();
        var archive = new ZipArchive(Samples.CARD);
        archive.close();
        var index = new HVMAArchive(Samples.CARD);
        var files = index.getFiles();
        index.close();
        for (Executable call :
                List.<Executable>of(
                        loader::load,
                        platform::getName,
                        clock::getName,
                        () -> reader.parseDSA(Samples.CARD, HwMetadataMode.HW_METADATA_AUTO),
                        () -> new NativeKeyService().getAsJsonStr(loader),
                        () -> new HMAVDsaJsonReader(platform.getHardwarePlatform()),
                        archive::members,
                        files::empty)) assertThrows(IllegalStateException.class, call);
    }

    /** A repository closes what it removes, and nothing else. */
    @Test
    void removedPlatformsRefuse() {
        String folder = Path.of(Samples.EMBEDDED).getParent().toString();
        try (var manager = new HMAVPlatformMgr()) {
            assertTrue(manager.addPlatformsFromDirs(List.of(folder)));
            var platform = manager.getPlatform("ostrivel_e7");
            var group = platform.getSoftwarePlatform().getSystemConfig().getProcessorGroups().get(0);
            assertEquals("linux_domain", group.getName());
            manager.removePlatformsFromDirs(List.of(folder));
            assertThrows(IllegalStateException.class, platform::getName);
            assertThrows(IllegalStateException.class, group::getName);
            assertNull(manager.getPlatform("ostrivel_e7"));
            assertTrue(manager.addPlatformsFromDirs(List.of(folder)));
            assertEquals("ostrivel_e7", manager.getPlatform("ostrivel_e7").getName());
        }
        var process = HMAVPlatformMgr.getGlobal();
        process.close();
        process.addPlatformsFromDirs(List.of(folder));
        var found = HMAVPlatformUtils.getPlatform("ostrivel_e7");
        assertEquals(found, process.getPlatform("ostrivel_e7"));
        assertEquals(List.of(found), HMAVPlatformUtils.filterOutOldPlatforms(List.of(found)));
        process.clearAllPlatforms();
        assertThrows(IllegalStateException.class, found::getName);
    }

    /** Reports go to the logger and to listeners; what those throw is nobody's business. */
    @Test
    void messagesArrive() {
        var told = new ArrayList<Message>();
        var logged = new ArrayList<String>();
        var handler =
                new java.util.logging.StreamHandler() {
                    @Override
                    public void publish(java.util.logging.LogRecord record) {
                        logged.add(getFormatter().formatMessage(record));
                    }
                };
        java.util.function.Consumer<Message> failing =
                message -> {
                    throw new IllegalStateException("ignored");
                };
        handler.setFormatter(new java.util.logging.SimpleFormatter());
        Messages.LOGGER.addHandler(handler);
        Messages.addListener(failing);
        Messages.addListener(told::add);
        try {
            assertThrows(
                    PlatformParseException.class, () -> new PlatformLoader("{0}.pka").load());
        } finally {
            Messages.removeListener(told::add);
            Messages.removeListener(failing);
            Messages.LOGGER.removeHandler(handler);
        }
        var last = told.get(told.size() - 1);
        assertEquals("@74-60@%s", last.id());
        assertEquals(1, last.arguments().size());
        assertEquals(told.stream().map(Message::text).toList(), logged);
        assertTrue(last.text().contains("{0}.pka"), last.text());
    }

    @Test
    void verdictsFillWhatTheyAreGiven() {
        var service = new NativeCatalogService();
        service.setTestCompilerVersion_("2019.1");
        var reasons = new ArrayList<>(List.of("before"));
        var reason = new StringBuilder();
        assertEquals(false, service.isUnderWarranty(Samples.CARD, reasons));
        assertEquals(false, service.isUnderWarranty(Samples.CARD, reason));
        assertEquals(List.of("before", reason.toString()), reasons);
        assertThrows(
                UnsupportedOperationException.class,
                () -> service.isUnderWarranty(Samples.CARD, List.of()));
    }
}
