#include "cad/db/ObjectIdentity.h"

#include "cad/db/GroupCodes.h"

namespace veltarn::db {
namespace {

constexpr int kLayoutName = 410;

std::size_t ownEnd(const TagList& tags) {
    std::size_t end = tags.find(gc::kStructure, 1);
    return end == TagList::npos ? tags.size() : end;
}

}  // namespace

void setIdentity(TagList& tags, Handle handle, int handleCode, Handle owner, bool withOwner) {
    if (tags.size() > 1 && (tags[1].code == gc::kHandle || tags[1].code == gc::kDimStyleHandle)) tags[1].value = formatHandle(handle);
    else tags.insert(1, handleCode, formatHandle(handle));
    if (!withOwner) return;
    std::size_t at = 2;
    while (at < tags.size() && tags[at].code == gc::kControlString) {
        std::size_t close = tags.find(gc::kControlString, kGroupEnd, at + 1);
        if (close == TagList::npos) break;
        at = close + 1;
    }
    if (at < tags.size() && tags[at].code == gc::kSoftPointer) tags[at].value = formatHandle(owner);
    else tags.insert(at, gc::kSoftPointer, formatHandle(owner));
}

TagList detached(TagList tags) {
    std::size_t end = ownEnd(tags);
    std::size_t marker = tags.find(gc::kSubclass, 1, end);
    std::size_t last = marker == TagList::npos ? end : marker;
    for (std::size_t i = 1; i < last;) {
        int code = tags[i].code;
        if (code == gc::kControlString) {
            std::size_t close = tags.find(gc::kControlString, kGroupEnd, i + 1, last);
            std::size_t count = (close == TagList::npos ? i : close) - i + 1;
            tags.erase(i, count);
            last -= count;
        } else if (code == gc::kHandle || code == gc::kDimStyleHandle || code == gc::kSoftPointer) {
            tags.erase(i);
            --last;
        } else {
            ++i;
        }
    }
    tags.removeAll(gc::kPaperSpace, 1, ownEnd(tags));
    tags.removeAll(kLayoutName, 1, ownEnd(tags));
    return tags;
}

}  // namespace veltarn::db
