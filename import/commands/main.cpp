/// velmora-import: from the files that users have to the pools and rasters that velmora reads.

#include "import/commands/commands.h"

int main(int argc, char** argv) {
    COMPANION_PROGRAM program("velmora-import", "From downloaded files to the input of velmora",
                              "  velmora-import dem N34W119.hgt.zip --heights egm96 -o dem\n"
                              "  velmora-import sentinel1 MASTER.xml -o master.pool\n"
                              "  velmora-import sentinel1 SLAVE.xml -o slave.pool\n"
                              "  velmora-import pair master.pool slave.pool dem.pool -o run\n");
    AddDemCommand(program);
    AddSentinel1Command(program);
    AddOrbitCommand(program);
    AddPairCommand(program);
    AddStackCommand(program);
    return program.Run(argc, argv);
}
