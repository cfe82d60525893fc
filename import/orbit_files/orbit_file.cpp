#include "import/orbit_files/orbit_file.h"

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "import/orbit_files/csv_file.h"
#include "import/orbit_files/eof_file.h"
#include "import/orbit_files/oem_file.h"
#include "import/orbit_files/xml_document.h"

namespace {

constexpr const char* kUtf8Mark = "\xEF\xBB\xBF";

ORBIT_TABLE ParseByKind(const std::string& file, const std::string& content) {
    const std::string start = Trimmed(content.substr(0, 4096));
    if (start.find("CCSDS_OEM_VERS") != std::string::npos && start.front() != '<') return ParseOem(file, content);
    if (!start.empty() && start.front() == '<') return ParseEof(file, content);
    return ParseCsv(file, content);
}

}  // namespace

ORBIT_TABLE ParseOrbit(const std::string& file, const std::string& content) {
    const bool marked = content.rfind(kUtf8Mark, 0) == 0;
    ORBIT_TABLE table = ParseByKind(file, marked ? content.substr(3) : content);
    CheckOrbitTable(table);
    return table;
}

ORBIT_TABLE ReadOrbitFile(const std::string& file) {
    return ParseOrbit(file, ReadWholeFile(file, kXmlLimitBytes));
}
