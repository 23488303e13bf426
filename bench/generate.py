#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the archives of the benchmarks: small.pka, medium.pka and large.pka in the given folder, each
with another one in which a tenth of the bus interfaces differ and a file that tells its size, with metadata of about 10 kB, 500 kB and 10 MB and an hpfm of about 3.5 kB, 235 kB and 4.8 MB. Equal at
every run."""

import json
import pathlib
import sys
import zipfile

# Bus interfaces in each archive, in the metadata and again in the hpfm, tuned for the sizes above.
SIZES = {"small": 1, "medium": 66, "large": 1330}
HPFM = {"name": "card.hpfm", "type": "HPFM", "usedIn": "implementation", "processingOrder": "late"}


def memory(i):
    return {"name": f"bank{i}", "type": "ddr4", "size": "16 GB",
            "configParams": [{"name": "DATA_WIDTH", "value": "64"}],
            "lowAddress": str(i << 34), "highAddress": str(((i + 1) << 34) - 1)}


def clock(i):
    return {"name": f"clk_kernel{i}", "origName": f"clkwiz_{i}/clk_out1", "id": str(i),
            "frequency": "300.000000", "instRef": f"/ulp/clkwiz_{i}", "compRef": "clkwiz",
            "period": "3.333", "normalizedPeriod": ".003333", "status": "scalable",
            "default": "true" if i == 0 else "false"}


def parameter(i):
    return {"name": f"PARAM_{i}", "value": str(i), "instRef": f"/ulp/axi_ic_{i}",
            "compRef": "axi_interconnect", "valid": "true"}


def segment(i, j):
    return {"baseName": f"HBM_MEM{j:02}", "index": str(j), "memoryInstance": "hmss_0/HBM",
            "auto": "true", "spTag": f"HBM[{j}]", "slr": "SLR0", "maxMasters": "15",
            "name": f"segment_{i}_{j}", "instRef": "/hmss_0", "region": f"region{j}",
            "readBwUsed": "100", "writeBwUsed": "200", "interleave": "0"}


def bus_interface(i):
    return {"name": f"M{i:02}_AXI", "mode": "master" if i % 2 else "slave",
            "instRef": f"/ulp/axi_ic_{i}", "compRef": "axi_interconnect", "typeRef": "aximm",
            "interfaceRef": f"M{i:02}_AXI", "clockRef": "clk_kernel0", "resetRef": "rst_kernel0",
            "memPort": "M_AXI_HP", "spTag": f"BANK{i}", "slr": "SLR1", "memoryInstance": "hmss_0",
            "dataWidth": "512", "numIdBits": "4", "addressSegment": "all",
            "direction": "out", "isrId": str(i), "category": "memory",
            "addressSegments": [segment(i, j) for j in range(16)]}


def element(indent, name, attributes, end="/>"):
    text = " ".join(f'qd:{key}="{value}"' for key, value in attributes.items())
    return f"{' ' * indent}<qd:{name} {text}{end}\n"


def hpfm_segment(i, j):
    return element(6, "addressSegment", {
        "baseName": f"DDR_MEM{j:02}", "index": j, "memoryInstance": "ddr_0/DDR", "auto": "true",
        "sptag": f"DDR[{j}]", "slr": "SLR0", "maxMasters": 15, "name": f"window_{i}_{j}",
        "instanceRef": "/ddr_0", "region": f"region{j}", "readBwUsed": 100, "writeBwUsed": 200,
        "interleave": 0})


def hpfm_bus(i):
    return element(4, "busInterface", {
        "name": f"S{i:02}_AXI", "mode": "slave" if i % 2 else "master",
        "instanceRef": f"/ulp/noc_{i}", "componentRef": "axi_noc", "busTypeRef": "aximm",
        "busInterfaceRef": f"S{i:02}_AXI", "clockRef": "clk_kernel0", "resetRef": "rst_kernel0",
        "memport": "S_AXI_NOC", "sptag": f"DDR{i}", "slr": "SLR0", "memoryInstance": "ddr_0",
        "dataWidth": 512, "idBits": 4, "direction": "in", "isrId": i, "category": "memory"},
        ">") + "".join(hpfm_segment(i, j) for j in range(11)) + "    </qd:busInterface>\n"


def hpfm(buses):
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<qd:repository xmlns:qd="urn:mav:hpfm:1">\n'
            '  <qd:component qd:name="card">\n' + "".join(hpfm_bus(i) for i in range(buses))
            + "  </qd:component>\n</qd:repository>\n")


def metadata(buses, files=()):
    return {"vendor": "tarvek", "boardId": "bench", "name": "card", "versionMajor": "3",
            "versionMinor": "1",
            "memories": [memory(i) for i in range(1 + buses // 4)],
            "files": [{"name": f"files/{i}.tcl", "type": "REBUILD_TCL", "usedIn": "synthesis",
                       "processingOrder": "early"} for i in range(1 + buses // 4)] + list(files),
            "systemClocks": [clock(i) for i in range(1 + buses // 8)],
            "ipParameters": [parameter(i) for i in range(buses)],
            "busInterfaces": [bus_interface(i) for i in range(buses)]}


def write(path, content, buses):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for i in range(8):
            archive.writestr(f"files/{i}.tcl", f"# script {i}\n" * 100)
        archive.writestr("pka.json", json.dumps(content, indent=2))
        archive.writestr(HPFM["name"], hpfm(buses))


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, buses in SIZES.items():
        content = metadata(buses, [HPFM])
        write(folder / f"{name}.pka", content, buses)
        size = len(json.dumps(content, indent=2)) + len(hpfm(buses))
        (folder / f"{name}.size").write_text(str(size), encoding="ascii")
        for bus in content["busInterfaces"][::10]:
            bus["slr"] = "SLR2"
            bus["addressSegments"].pop()
        write(folder / f"{name}-changed.pka", content, buses)


if __name__ == "__main__":
    main()
