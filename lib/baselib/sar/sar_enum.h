/// \file sar_enum.h
/// What the enumerations of SAR product vocabulary share. Identifier 0, "-", means "not set"; the real enumerators
/// follow from 1; the last identifier, again "-", only ends the range, and no text leads to it. A pool holds the text
/// of an enumerator, or an alternative text that other producers write for it. Threads: plain values; the tables are
/// constant.

#pragma once

#include <span>
#include <string>

#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/enum_base.h"
#include "lib/baselib/pool/parameter_pool.h"

namespace SAR {

/// A further text of the enumerator with this identifier.
struct ALTERNATIVE_TEXT {
    const char* text;
    int id;
};

struct ENUM_TABLE {
    const char* pool_key;
    std::span<const BASIC::TYPES::ENUM_BASE::ROW> rows;
    std::span<const ALTERNATIVE_TEXT> alternative_texts = {};
};

class SAR_ENUM : public BASIC::TYPES::ENUM_BASE {
  public:
    [[nodiscard]] STRING PoolKey() const { return Table().pool_key; }

    /// The enumerator of this text, capitals and small letters being different; the enumerators' own texts come before
    /// the alternative ones.
    /// @throws BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE
    void FromText(const std::string& text);
    /// The enumerator that the first list of alternative texts names so, "not set" when none: for pools that hold the
    /// words of one producer only.
    void FromFirstList(const std::string& text);
    /// The enumerator whose text the pool holds under the pool key. @throws as PARAMETER_POOL::Get and FromText
    void ReadFromParameterPool(PARAMETER_POOL& pool);

  protected:
    [[nodiscard]] virtual const ENUM_TABLE& Table() const = 0;

  private:
    [[nodiscard]] std::span<const ROW> Rows() const override { return Table().rows; }
};

template <const ENUM_TABLE& kTable>
class SAR_ENUM_OF : public SAR_ENUM {
  public:
    /// @throws BASIC::TYPES::ERROR_ENUM_BASE_INVALID_ID
    explicit SAR_ENUM_OF(int id = 0) { AssignId(id, true); }

  protected:
    [[nodiscard]] const ENUM_TABLE& Table() const override { return kTable; }
};

}  // namespace SAR
