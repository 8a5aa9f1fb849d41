// Lists where each section of a card file starts: one "<offset>\t<keyword>" line per located
// section, then what the locator found missing, if anything.
#include <cstdio>

#include "core/dataloc.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: locate_sections FILE.mat\n");
        return 2;
    }
    // Binary mode, as the importer reads: offsets must count every byte, carriage returns included.
    FILE* file = std::fopen(argv[1], "rb");
    if (file == nullptr) {
        std::fprintf(stderr, "locate_sections: %s: could not open file\n", argv[1]);
        return 1;
    }
    const DataLoc located(file);
    std::fclose(file);

    for (size_t i = 0; i < located.keywords.size(); ++i)
        std::printf("%ld\t%s\n", located.offsets[i], located.keywords[i].c_str());
    if (!located.warnings.empty()) std::printf("%s", located.warnings.c_str());
    return 0;
}
