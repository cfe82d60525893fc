#include "import/orbit_files/eof_file.h"

#include "import/orbit_files/xml_document.h"

namespace {

void RequireText(const XML_ELEMENT& element, const std::string& expected) {
    if (element.Text() != expected) element.Refuse(Quoted(expected));
}

double Coordinate(const XML_ELEMENT& vector, const char* name, const std::string& unit) {
    const XML_ELEMENT element = vector.Child(name);
    const std::string given = element.Attribute("unit");
    if (!given.empty() && given != unit) RefuseValue(element.Place(), given, "the unit " + Quoted(unit));
    return element.Real();
}

UTC_STATE_VECTOR VectorOf(const XML_ELEMENT& vector) {
    return {vector.Child("UTC").Utc(),
            {Coordinate(vector, "X", "m"), Coordinate(vector, "Y", "m"), Coordinate(vector, "Z", "m")},
            {Coordinate(vector, "VX", "m/s"), Coordinate(vector, "VY", "m/s"), Coordinate(vector, "VZ", "m/s")}};
}

}  // namespace

ORBIT_TABLE ParseEof(const std::string& file, const std::string& content) {
    const XML_DOCUMENT document(file, content);
    const XML_ELEMENT root = document.Root("Earth_Explorer_File");
    const XML_ELEMENT header = root.Child("Earth_Explorer_Header");
    RequireText(header.Child("Variable_Header/Ref_Frame"), "EARTH_FIXED");
    RequireText(header.Child("Variable_Header/Time_Reference"), "UTC");
    ORBIT_TABLE table{file, "Sentinel-1 orbit file", header.Child("Fixed_Header/Mission").Text(), {}};
    const XML_ELEMENT list = root.Child("Data_Block/List_of_OSVs");
    for (const XML_ELEMENT& vector : list.Children("OSV")) table.vectors.push_back(VectorOf(vector));
    const std::string count = list.Attribute("count");
    if (!count.empty() && count != std::to_string(table.vectors.size()))
        throw COMPANION_ERROR(file + ": element List_of_OSVs: count " + Quoted(count) + ", but " +
                              std::to_string(table.vectors.size()) + " state vectors follow: the file is not whole");
    return table;
}
