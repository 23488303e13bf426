// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.MethodSource;

class JsonTest {
    static List<String> platforms() throws IOException {
        return Samples.platforms();
    }

    private static String mavJson(String path) throws IOException, InterruptedException {
        var mav = new ProcessBuilder(System.getProperty("mav.bin"), "json", path).start();
        byte[] out = mav.getInputStream().readAllBytes();
        assertEquals(0, mav.waitFor());
        return new String(out, StandardCharsets.UTF_8);
    }

    @ParameterizedTest
    @MethodSource("platforms")
    void isWhatTheCommandPrints(String path) throws Exception {
        try (var loader = new PlatformLoader(path)) {
            var writer = new JSONObjectWriter();
            loader.load().toJSON(writer);
            assertEquals(mavJson(path), writer.text());
            assertEquals(mavJson(path), new NativeObjectService().getAsJsonStr(loader));
        }
    }

    /** Texts of every width come back as they went. */
    @Test
    void textsKeepTheirLetters() {
        String text = "a\u00e9\u20ac\ud83d\ude00\u0000z";
        var writer = new JSONObjectWriter();
        writer.addKey("list", List.of("x", text.replace("\u0000", "")));
        assertEquals(
                List.of("x", text.replace("\u0000", "")),
                ((java.util.Map<?, ?>) new NativeObjectService().readJson(writer.text()).value()).get("list"));
        var clock = new HMAVSystemClock();
        clock.setName(text);
        assertEquals(text, clock.getName());
        clock.setName("\ud83d!");
        assertEquals("?!", clock.getName());
    }
}
