/// \file xml_document.h
/// An XML document, read with limits: at most 32 MiB, at most 200 000 elements of a list, no document type (hence no
/// entities of its own, internal or external). Elements know their path, so that a missing or wrong one is named in
/// full.

#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "companions/companion_error.h"
#include "time/universal_time.h"

inline constexpr std::size_t kXmlLimitBytes = std::size_t{32} << 20U;

class XML_ELEMENT {
  public:
    XML_ELEMENT(std::string file, std::string path, pugi::xml_node node)
        : file_(std::move(file)), path_(std::move(path)), node_(node) {}

    /// @param path  "adsHeader/mode": names separated by "/". @throws COMPANION_ERROR naming what is missing
    [[nodiscard]] XML_ELEMENT Child(const std::string& path) const;
    [[nodiscard]] bool Has(const std::string& name) const { return !node_.child(name.c_str()).empty(); }
    /// All children of the name; their paths count from 1: "orbit[3]". @throws COMPANION_ERROR for too many
    [[nodiscard]] std::vector<XML_ELEMENT> Children(const std::string& name) const;

    [[nodiscard]] std::string Text() const;
    [[nodiscard]] std::string Attribute(const char* name) const { return node_.attribute(name).value(); }
    /// @throws COMPANION_ERROR naming the element, its text and what was expected
    [[nodiscard]] double Real() const { return RealOf(Place(), Text()); }
    [[nodiscard]] double PositiveReal() const;
    [[nodiscard]] long long Integer(long long least, long long most) const {
        return IntegerOf(Place(), Text(), least, most);
    }
    [[nodiscard]] UNIVERSAL_TIME Utc() const;
    [[nodiscard]] VALUE_PLACE Place() const { return {file_, "element " + path_}; }
    [[noreturn]] void Refuse(const std::string& expected) const { RefuseValue(Place(), Text(), expected); }

  private:
    std::string file_;
    std::string path_;
    pugi::xml_node node_;
};

class XML_DOCUMENT {
  public:
    /// @param file  for messages. @throws COMPANION_ERROR for what is no XML, with line and reason
    XML_DOCUMENT(const std::string& file, const std::string& content);

    /// @throws COMPANION_ERROR unless the outermost element has this name
    [[nodiscard]] XML_ELEMENT Root(const std::string& name) const;

  private:
    std::string file_;
    pugi::xml_document document_;
};
