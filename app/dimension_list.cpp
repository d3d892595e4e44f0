// Reads dimension records and frame records as any program may: from the tags on their groups.
#include "app/dimension_list.h"

#include <charconv>
#include <cstdlib>
#include <map>

#include "host/code_page.h"
#include "hostapi/record_additions.h"
#include "hostapi/records.h"

namespace quorvel::app {

namespace {

const std::map<int, const char*>& kindNames() {
    static const std::map<int, const char*> names = {{kObliqueTool, "oblique"},   {kRadiusTool, "radius"},
                                                     {kDiameterTool, "diameter"}, {kAngleTool, "angle"},
                                                     {kStraightTool, "straight"}, {kCurveTool, "curve"}};
    return names;
}

std::vector<std::string> fields(const std::string& text) {
    std::vector<std::string> out(1);
    for (const char c : text) {
        if (c == ',')
            out.emplace_back();
        else
            out.back() += c;
    }
    return out;
}

float number(const std::vector<std::string>& all, std::size_t index) {
    return index < all.size() ? static_cast<float>(std::atof(all[index].c_str())) : 0;
}

// The art that has an object id.
using ArtByObject = std::map<std::string, std::vector<const doc::Art*>>;

LinkedArt linkTo(const std::string& from, std::int32_t objectId, std::int32_t anchor, const ArtByObject& all) {
    LinkedArt link{from, objectId, anchor, {}};
    const auto artByObject = all.find(std::to_string(objectId));
    if (artByObject == all.end()) return link;
    for (const doc::Art* art : artByObject->second) link.names.push_back(art->name.empty() ? "(no id)" : art->name);
    return link;
}

void collectTexts(const doc::Document& document, doc::ArtId id, std::vector<std::string>* texts) {
    const doc::Art& art = *document.find(id);
    if (art.text != nullptr) texts->push_back(host::toUtf8(art.text->text));
    // The lowest child was made first.
    for (doc::ArtId child = art.lastChild; child != 0; child = document.find(child)->above)
        collectTexts(document, child, texts);
}

// A cell list: pairs of object id and anchor, ended by an id of 0 and the coordinates of the first anchor.
void readLinks(const std::string& text, const std::string& from, const ArtByObject& artByObject,
               RecordedDimension* dimension) {
    const std::vector<std::string> all = fields(text);
    for (std::size_t i = 0; i + 1 < all.size(); i += 2) {
        const std::int32_t objectId = std::atoi(all[i].c_str());
        if (objectId == 0) {
            if (from.rfind("stop", 0) == 0)
                dimension->points.push_back({from, {number(all, i + 1), number(all, i + 2)}});
            return;
        }
        dimension->links.push_back(linkTo(from, objectId, std::atoi(all[i + 1].c_str()), artByObject));
    }
}

std::string kindOf(const doc::Document& document, doc::ArtId id) {
    static constexpr const char* kMarks[] = {"comment", "number", "length", "area"};
    if (const std::string* mark = document.tag(id, kMarkTag)) {
        const int mode = std::atoi(mark->c_str());
        return mode >= 0 && mode < 4 ? kMarks[mode] : "mark " + std::to_string(mode);
    }
    const int kind = std::atoi(document.tag(id, kToolConfigTag)->c_str()) / kKindFactor;
    const auto name = kindNames().find(kind);
    return name == kindNames().end() ? "kind " + std::to_string(kind) : name->second;
}

RecordedDimension readDimension(const doc::Document& document, const doc::Art& art, const ArtByObject& artByObject) {
    RecordedDimension dimension;
    dimension.kind = kindOf(document, art.id);
    for (const auto& [tag, point] : {std::pair{kFromTag, "from"}, {kToTag, "to"}, {kEndTag, "end"}}) {
        const std::string* text = document.tag(art.id, tag);
        if (text == nullptr) continue;
        const std::vector<std::string> all = fields(*text);
        dimension.points.push_back({point, {number(all, kPositionPoint), number(all, kPositionPoint + 1)}});
    }
    for (const auto& [tag, from] : {std::pair{kFromCellTag, "from"}, {kToCellTag, "to"}})
        if (const std::string* text = document.tag(art.id, tag)) readLinks(*text, from, artByObject, &dimension);
    for (int stop = 1; stop <= kStopLimit; ++stop) {
        if (const std::string* text = document.tag(art.id, StopTagName(stop)))
            readLinks(*text, "stop " + std::to_string(stop), artByObject, &dimension);
    }
    return dimension;
}

class Lister {
  public:
    explicit Lister(const doc::Document& document) : document_(document) {}

    std::vector<RecordedDimension> list() {
        for (const doc::LayerId layer : document_.layers()) collectIds(document_.layer(layer)->root);
        for (const doc::LayerId layer : document_.layers()) {
            layer_ = document_.layer(layer)->title;
            walk(document_.layer(layer)->root);
        }
        return std::move(found_);
    }

  private:
    void collectIds(doc::ArtId id) {
        const doc::Art& art = *document_.find(id);
        if (const std::string* object = document_.tag(id, kObjectIdTag))
            artByObject_[std::to_string(std::atoi(object->c_str()))].push_back(&art);
        for (doc::ArtId child = art.firstChild; child != 0; child = document_.find(child)->below) collectIds(child);
    }

    void walk(doc::ArtId id) {
        const doc::Art& art = *document_.find(id);
        const bool dimension = document_.tag(id, kToolConfigTag) != nullptr || document_.tag(id, kMarkTag) != nullptr;
        if (dimension || document_.tag(id, kFrameTag) != nullptr) {
            RecordedDimension entry;
            if (dimension)
                entry = readDimension(document_, art, artByObject_);
            else
                entry.kind = "frame";
            entry.group = id;
            entry.name = art.name;
            entry.layer = layer_;
            collectTexts(document_, id, &entry.texts);
            found_.push_back(std::move(entry));
            return;
        }
        for (doc::ArtId child = art.firstChild; child != 0; child = document_.find(child)->below) walk(child);
    }

    const doc::Document& document_;
    ArtByObject artByObject_;
    std::string layer_;
    std::vector<RecordedDimension> found_;
};

std::string shortText(float value) {
    char digits[64];
    std::string text(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    return text.find_first_of(".en") == std::string::npos ? text + ".0" : text;
}

}  // namespace

std::string endName(const DimensionEnd& end) {
    if (end.place == kFromEnd) return "from";
    if (end.place == kTextEnd) return "text";
    return end.place == kToEnd ? "to" : "stop " + std::to_string(end.place);
}

const char* linkWord(LinkState state) {
    static constexpr const char* kWords[kLinkStateCount] = {
        "held", "free", "deleted", "unpainted", "layer", "segment gone", "copy", "no crossing", "no arc", "edited"};
    return kWords[state];
}

Error unheldPoint(const DimensionEnd& end) {
    const int row = static_cast<int>(ErrorCode::kPointFree) + end.state - kLinkFree;
    return makeError(static_cast<ErrorCode>(row), {endName(end)});
}

void examineEnds(host::Host& host, std::vector<RecordedDimension>* dimensions) {
    std::vector<doc::ArtId> groups;
    for (const RecordedDimension& dimension : *dimensions) groups.push_back(dimension.group);
    const std::vector<std::vector<DimensionEnd>> ends = host.examineDimensions(groups);
    for (std::size_t i = 0; i < groups.size(); ++i) (*dimensions)[i].ends = ends[i];
}

std::vector<RecordedDimension> listDimensions(const doc::Document& document) { return Lister(document).list(); }

std::string listText(const std::vector<RecordedDimension>& dimensions) {
    std::string out;
    for (const RecordedDimension& dimension : dimensions) {
        out += (dimension.name.empty() ? "-" : dimension.name) + "  " + dimension.kind + "  \"";
        const std::size_t shown =
            dimension.kind == "frame" ? std::min<std::size_t>(dimension.texts.size(), 6) : dimension.texts.size();
        for (std::size_t i = 0; i < shown; ++i) out += (i == 0 ? "" : " | ") + dimension.texts[i];
        out += "\"";
        for (const auto& [name, point] : dimension.points)
            out += "  " + name + " " + shortText(point.h) + "," + shortText(point.v);
        out += "  on \"" + dimension.layer + "\"\n";
        for (const LinkedArt& link : dimension.links) {
            out += "    " + link.from + " -> ";
            for (std::size_t i = 0; i < link.names.size(); ++i) out += (i == 0 ? "" : ", ") + link.names[i];
            if (link.names.empty()) out += "lost art";
            out += " anchor " + std::to_string(link.anchor) + " (object " + std::to_string(link.objectId) + ")\n";
        }
        for (const DimensionEnd& end : dimension.ends)
            if (end.state != kLinkHeld) out += "    " + endName(end) + ": " + linkWord(end.state) + '\n';
    }
    return out;
}

}  // namespace quorvel::app
