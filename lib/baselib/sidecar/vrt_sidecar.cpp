#include "lib/baselib/sidecar/vrt_sidecar.h"

#include <algorithm>
#include <cstdio>

namespace {

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string Element(const char* name, const std::string& content) {
    return std::string("    <") + name + ">" + Escaped(content) + "</" + name + ">\n";
}

std::string OptionalElement(const char* name, const std::string& content) {
    return content.empty() ? "" : Element(name, content);
}

std::string Metadata(const std::string& product_key) {
    if (product_key.empty()) return "";
    return "  <Metadata>\n    <MDI key=\"VELMORA_PRODUCT\">" + Escaped(product_key) + "</MDI>\n  </Metadata>\n";
}

std::string NumberText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

}  // namespace

std::string VrtPath(const std::string& raster_path) {
    return raster_path + ".vrt";
}

const char* GdalTypeName(PIXEL_TYPE pixel_type) {
    switch (pixel_type) {
        case PIXEL_TYPE::U_INT_8:
            return "Byte";
        case PIXEL_TYPE::INT_16:
            return "Int16";
        case PIXEL_TYPE::INT_32:
            return "Int32";
        case PIXEL_TYPE::FLT_6:
            return "Float32";
        case PIXEL_TYPE::FLT_15:
            return "Float64";
        case PIXEL_TYPE::C_INT_16:
            return "CInt16";
        case PIXEL_TYPE::C_FLT_6:
            return "CFloat32";
        case PIXEL_TYPE::C_FLT_15:
            return "CFloat64";
        default:
            return nullptr;
    }
}

bool CanBeNamedInVrt(const std::string& file_name) {
    return std::ranges::none_of(file_name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
}

std::string VrtText(const VRT_SIDECAR& sidecar) {
    const long long pixel_bytes = KnownPixelType(sidecar.pixel_type).bytes;
    std::string text = "<VRTDataset rasterXSize=\"" + std::to_string(sidecar.columns) + "\" rasterYSize=\"" +
                       std::to_string(sidecar.rows) + "\">\n";
    text += Metadata(sidecar.product_key);
    text += std::string("  <VRTRasterBand dataType=\"") + GdalTypeName(sidecar.pixel_type) +
            "\" band=\"1\" subClass=\"VRTRawRasterBand\">\n";
    text += OptionalElement("Description", sidecar.description);
    text += OptionalElement("UnitType", sidecar.unit);
    if (sidecar.no_data) text += Element("NoDataValue", NumberText(*sidecar.no_data));
    text += "    <SourceFilename relativeToVRT=\"1\">" + Escaped(sidecar.file_name) + "</SourceFilename>\n";
    text += Element("ImageOffset", std::to_string(sidecar.image_offset_bytes));
    text += Element("PixelOffset", std::to_string(pixel_bytes));
    text += Element("LineOffset", std::to_string(pixel_bytes * sidecar.columns));
    text += Element("ByteOrder", "LSB");
    return text + "  </VRTRasterBand>\n</VRTDataset>\n";
}
