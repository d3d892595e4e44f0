// Entries in one array, linked both ways within their buckets, so that art leaves a value that a whole drawing has as
// fast as one of its own.
#include "document/tag_index.h"

#include <algorithm>
#include <functional>

namespace quorvel::doc {

std::string_view tagKey(std::string_view value) {
    const std::size_t digits = value.find_first_not_of('0');
    if (value.empty() || value[0] != '0' || value.find_first_not_of("0123456789") != std::string_view::npos)
        return value;
    return value.substr(std::min(digits, value.size() - 1));
}

void TagIndex::put(ArtId art, const std::string* value) {
    const std::uint32_t known = art < entryOf_.size() ? entryOf_[art] : kNone;
    if (value == nullptr) {
        if (known != kNone) remove(known);
        return;
    }
    const std::size_t hash = std::hash<std::string_view>()(tagKey(*value));
    if (known == kNone) {
        add(art, hash);
    } else if (entries_[known].hash != hash) {
        unlink(known);
        entries_[known].hash = hash;
        link(known);
    }
}

void TagIndex::add(ArtId art, std::size_t hash) {
    if (count_ >= buckets_.size()) grow();
    if (free_ == kNone) {
        free_ = static_cast<std::uint32_t>(entries_.size());
        entries_.emplace_back();
    }
    const std::uint32_t entry = free_;
    free_ = entries_[entry].after;
    entries_[entry] = {.hash = hash, .art = art};
    link(entry);
    if (entryOf_.size() <= art) entryOf_.resize(std::max<std::size_t>(art + 1, entryOf_.size() * 2), kNone);
    entryOf_[art] = entry;
    ++count_;
}

void TagIndex::remove(std::uint32_t entry) {
    unlink(entry);
    entryOf_[entries_[entry].art] = kNone;
    entries_[entry] = {.after = free_};
    free_ = entry;
    --count_;
}

void TagIndex::link(std::uint32_t entry) {
    std::uint32_t& first = buckets_[bucketOf(entries_[entry].hash)];
    entries_[entry].before = kNone;
    entries_[entry].after = first;
    if (first != kNone) entries_[first].before = entry;
    first = entry;
}

void TagIndex::unlink(std::uint32_t entry) {
    const Entry& out = entries_[entry];
    (out.before != kNone ? entries_[out.before].after : buckets_[bucketOf(out.hash)]) = out.after;
    if (out.after != kNone) entries_[out.after].before = out.before;
}

void TagIndex::grow() {
    buckets_.assign(std::max<std::size_t>(16, buckets_.size() * 2), kNone);
    for (std::uint32_t entry = 0; entry < entries_.size(); ++entry) {
        if (entries_[entry].art != 0) link(entry);
    }
}

void TagIndex::find(std::string_view value, std::vector<ArtId>* arts) const {
    if (buckets_.empty()) return;
    const std::size_t hash = std::hash<std::string_view>()(tagKey(value));
    for (std::uint32_t at = buckets_[bucketOf(hash)]; at != kNone; at = entries_[at].after) {
        if (entries_[at].hash == hash) arts->push_back(entries_[at].art);
    }
}

void TagIndex::all(std::vector<ArtId>* arts) const {
    for (const Entry& entry : entries_) {
        if (entry.art != 0) arts->push_back(entry.art);
    }
}

}  // namespace quorvel::doc
