// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.concurrent.Callable;
import java.util.concurrent.Executors;
import java.util.function.Supplier;
import org.junit.jupiter.api.Test;

/** Parts are used long after everything that led to them was collected. */
class StormTest {
    private static final int ROUNDS = 60;

    /** Parts of a platform, each with what it has to say; nothing else of the platform is held. */
    private static List<Supplier<String>> parts(String path) {
        var parts = new ArrayList<Supplier<String>>();
        var platform = new PlatformLoader(path).load();
        var hardware = platform.getHardwarePlatform();
        parts.add(hardware.getSystemClocks().get(1)::getName);
        parts.add(hardware.getBusInterfaces().get(0)::getName);
        parts.add(hardware.getBoard()::getName);
        parts.add(hardware.getDevices().get(0).getPart()::getName);
        parts.add(hardware.getDesignIntent()::toJSONString);
        if (platform.getSoftwarePlatform() != null) {
            var config = platform.getSoftwarePlatform().getDefaultSystemConfig();
            parts.add(config.getProcessorGroups().get(0)::getName);
        }
        parts.add(new NativeObjectService().getAsPropertyTree(path).getItems().get(0)::getData);
        return parts;
    }

    private static int storm(String path, long seed) {
        var random = new Random(seed);
        var expected = parts(path).stream().map(Supplier::get).toList();
        var held = new ArrayList<Supplier<String>>();
        var texts = new ArrayList<String>();
        int compared = 0;
        for (int round = 0; round < ROUNDS; ++round) {
            var parts = parts(path);
            int kept = random.nextInt(parts.size());
            held.add(parts.get(kept));
            texts.add(expected.get(kept));
            if (round % 10 == 0) System.gc();
            int asked = random.nextInt(held.size());
            assertEquals(texts.get(asked), held.get(asked).get());
            ++compared;
            if (held.size() > 20) {
                held.remove(0);
                texts.remove(0);
            }
        }
        return compared;
    }

    @Test
    void partsOutliveTheirWay() throws Exception {
        var threads = Executors.newFixedThreadPool(4);
        try {
            var storms =
                    List.<Callable<Integer>>of(
                            () -> storm(Samples.CARD, 1),
                            () -> storm(Samples.EMBEDDED, 2),
                            () -> storm(Samples.EMBEDDED, 3),
                            () -> storm(Samples.CARD, 4));
            for (var storm : threads.invokeAll(storms)) assertEquals(ROUNDS, storm.get());
        } finally {
            threads.shutdown();
        }
    }
}
