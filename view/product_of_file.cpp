#include "view/product_of_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

#include "companions/companion_error.h"
#include "lib/baselib/sidecar/vrt_sidecar.h"

namespace {

constexpr std::size_t kLongestSidecar = 4096;

const PRODUCT_KIND* ByOption(const std::string& option) {
    const PRODUCT_KIND* const kind = FindProductKind(option);
    if (kind == nullptr)
        throw COMPANION_ERROR("--kind: value " + Quoted(option) + ": expected one of " + ProductKeys());
    return kind;
}

const PRODUCT_KIND* BySidecar(const std::string& path) {
    std::ifstream file(VrtPath(path), std::ios::binary);
    std::string text(kLongestSidecar, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    for (const PRODUCT_KIND& kind : ProductKinds()) {
        if (text.find(std::string("\"VELMORA_PRODUCT\">") + kind.key + "<") != std::string::npos) return &kind;
    }
    return nullptr;
}

const PRODUCT_KIND* ByName(const std::string& path) {
    std::string name = std::filesystem::path(path).filename().string();
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::toupper(c); });
    for (const PRODUCT_KIND& kind : ProductKinds()) {
        if (name.find(kind.key) != std::string::npos) return &kind;
    }
    return nullptr;
}

}  // namespace

std::string ProductKeys() {
    std::string keys;
    for (const PRODUCT_KIND& kind : ProductKinds()) keys += (keys.empty() ? "" : ", ") + std::string(kind.key);
    return keys;
}

const PRODUCT_KIND* ProductOfFile(const std::string& path, const std::string& option) {
    if (!option.empty()) return ByOption(option);
    const PRODUCT_KIND* const kind = BySidecar(path);
    return kind != nullptr ? kind : ByName(path);
}
