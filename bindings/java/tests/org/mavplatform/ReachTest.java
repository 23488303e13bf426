// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayDeque;
import java.util.Arrays;
import java.util.Collection;
import java.util.Deque;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import org.junit.jupiter.api.Test;

/** Every class is there, and every question without arguments is asked of real objects. */
class ReachTest {
    /** Headers of no class, of classes inside the library, and of emulation metadata as a file. */
    private static final Set<String> NO_CLASS =
            Set.of(
                    "mav_platform", "mav_platform_c", "partitionsFault", "OwnedList", "JSONTextSink",
                    "ArchiveAnswers",
                    "HMAVEmulationExtMetaJsonReader", "HMAVEmulationJsonReader",
                    "HMAVEmulationXMLReader", "HMAVEmulationXMLWriter",
                    "HMAVDpePartitionsJsonReader");

    /** So many objects of one class are asked. */
    private static final int ENOUGH = 12;

    private final Deque<Object> waiting = new ArrayDeque<>();
    private final Map<Class<?>, Integer> seen = new HashMap<>();
    private int asked;

    private static List<String> headers() throws Exception {
        try (var files = Files.list(Path.of(System.getProperty("mav.headers")))) {
            return files.map(file -> file.getFileName().toString().replace(".h", ""))
                    .filter(name -> !NO_CLASS.contains(name))
                    .sorted()
                    .toList();
        }
    }

    /** The Java name of a header's class. */
    private static Class<?> classOf(String header) throws ClassNotFoundException {
        String name = header;
        if (header.endsWith("Service") && header.startsWith("HMAV")) name = header.substring(4);
        return Class.forName("org.mavplatform." + name);
    }

    private static boolean isQuestion(Method method) {
        return method.getParameterCount() == 0
                && Modifier.isPublic(method.getModifiers())
                && !Modifier.isStatic(method.getModifiers())
                && method.getDeclaringClass() != Object.class
                && !method.getName().matches("(close|clear.*|add.*|create[A-HJ-Z].*|delete.*)")
                && !method.getName().equals("getNpiBaseAddressAsHex");
    }

    private void ask(Object object) throws Exception {
        for (Method method : object.getClass().getMethods()) {
            if (!isQuestion(method) || Modifier.isAbstract(method.getModifiers())) continue;
            try {
                meet(method.invoke(object));
                ++asked;
            } catch (InvocationTargetException refused) {
                assertTrue(refused.getCause() instanceof HEXError, method + ": " + refused.getCause());
            }
        }
    }

    private void meet(Object object) {
        if (object instanceof Collection<?> list) {
            list.forEach(this::meet);
        } else if (object instanceof NativeObject && seen.merge(object.getClass(), 1, Integer::sum) <= ENOUGH) {
            for (Class<?> base = object.getClass(); base != null; base = base.getSuperclass())
                seen.putIfAbsent(base, 0);
            waiting.add(object);
        }
    }

    @Test
    void everyClass() throws Exception {
        var folders = List.of(Samples.ROOT.toString());
        var manager = new HMAVPlatformMgr();
        manager.addPlatformsFromDirs(folders);
        var hardware = new PlatformLoader(Samples.CARD).load().getHardwarePlatform();
        var hand = new HPLPlatform();
        hand.addFeatureRom();
        hand.addReconfigPartition();
        hand.addDpePartition();
        hand.createBoard().addDriver();
        hand.createBoard().createPCIeId();
        hand.createBoard().addDimmConnector();
        hand.addNocConnectivity();
        hand.addDevice().addClock();
        hand.addHardwareIPParam();
        for (Object object :
                List.of(
                        hardware, hand, manager, new PlatformLoader(Samples.CARD),
                        new NativeCatalogService(), new NativeDictService(), new NativeDocService(),
                        new NativeKeyService(), new NativeObjectService(),
                        new NativeTransformService(), new NativePlatformRepoService(), new BareHardwarePlatforms(folders, true),
                        new ZipArchive(Samples.CARD), new HVMAArchive(Samples.CARD),
                        new TypedMembers(new ZipArchive(Samples.CARD)),
                        new NativeObjectService().getAsPropertyTree(Samples.EMBEDDED),
                        new NativeCatalogService().judge(new PlatformLoader(Samples.CARD)),
                        new PlatformList(folders, new PlatformFilter()), PlatformCheck.rules(), new JSONValue("text"), new JSONListWriter(),
                        new HMAVTmpDirObject("java"), new PlatformFileExtractor(hardware),
                        new PlatformDpeprjFileExtractor(hardware)))
            meet(object);
        for (String path : Samples.platforms()) meet(new PlatformLoader(path).load());
        while (!waiting.isEmpty()) ask(waiting.poll());
        assertTrue(asked > 400, "questions: " + asked);

        var missing = new TreeSet<String>();
        for (String header : headers()) {
            Class<?> type = classOf(header);
            boolean isMade = type.getConstructors().length > 0 || type.isEnum();
            boolean isAsked =
                    Arrays.stream(type.getMethods()).anyMatch(m -> Modifier.isStatic(m.getModifiers()));
            if (!seen.containsKey(type) && !isMade && !isAsked && !Modifier.isAbstract(type.getModifiers()))
                missing.add(header);
        }
        assertEquals(Set.of(), missing);
    }
}
