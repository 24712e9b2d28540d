#pragma once

#include "model/ARXFileOperationItem.h"
#include "model/ARXSpaceViewTypes.h"
#include "platform/ARXPath.h"

#include <QDateTime>

#include <memory>
#include <optional>
#include <vector>

// What one item of a finished operation did: where it came from, where it really ended up (none
// when it ended nowhere known, such as a trash that gave no resulting path), and when. `made` is
// what stood at the target when the item was done: an undo that would remove the item checks
// that it is still that.
struct ARXFileOperationRecord {
    Path source;
    std::optional<Path> target;
    QDateTime time;
    std::optional<ARXMadeItem> made = std::nullopt;
};

// One finished operation as the undo history keeps it: its kind and the records of its items, in
// the batch's order.
struct ARXFileOperationRecordGroup {
    ARXFileOperationType action = ARXFileOperationType::rename;
    std::vector<ARXFileOperationRecord> records;
};

using ARXFileOperationRecordGroupRef = std::shared_ptr<ARXFileOperationRecordGroup>;
