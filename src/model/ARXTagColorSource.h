#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

// A colour as 0xRRGGBB; the views turn it into their own colour type.
using ARXTagColor = uint32_t;

// Where entries learn the colours of their tags: the tag manager's table of tag names and colour
// numbers, and the colours those numbers stand for. Number 0 stands for no colour. The model only
// reads it; the tag manager installs itself at start, tests install their own tables.
class ARXTagColorSource {
public:
    virtual ~ARXTagColorSource() = default;

    // The colour number of a tag; 0 for a tag without colour or one the table does not know.
    virtual int colorIndex(const QString& tag) const = 0;

    // The colours by number; index 0 is "no colour" and is never drawn.
    virtual const std::vector<ARXTagColor>& colors() const = 0;

    // The installed source, or null when there is none (then no tag has a colour).
    static std::shared_ptr<const ARXTagColorSource> current() { return slot(); }
    static void install(std::shared_ptr<const ARXTagColorSource> source) {
        slot() = std::move(source);
    }

private:
    static std::shared_ptr<const ARXTagColorSource>& slot() {
        static std::shared_ptr<const ARXTagColorSource> installed;
        return installed;
    }
};
