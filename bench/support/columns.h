#pragma once

#include "model/ARXSpaceViewTypes.h"

#include <cstring>
#include <optional>

// The column a benchmark's --column / --sort argument names: name, modified, size or kind.
inline std::optional<ARXSpaceViewColumnId> benchColumnNamed(const char* name) {
    static const struct {
        const char* word;
        ARXSpaceViewColumnId column;
    } columns[] = {{"name", ARXSpaceViewColumnId::name},
                   {"modified", ARXSpaceViewColumnId::modified},
                   {"size", ARXSpaceViewColumnId::size},
                   {"kind", ARXSpaceViewColumnId::kind}};
    for (const auto& entry : columns) {
        if (std::strcmp(name, entry.word) == 0) {
            return entry.column;
        }
    }
    return std::nullopt;
}
