// The suites that a plug-in needs before it touches a drawing: acquiring the others, blocks of memory, its own module,
// numbers and rectangles, Unicode strings and random numbers.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "document/bounds.h"
#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- SP --------------------------------------------------------------------------------------------------------------

AIErr acquireSuite(const char* name, std::int32_t version, const void** suite) {
    deref(suite) = nullptr;
    const void* record = findSuite(&deref(name), version);
    require(record != nullptr, kSuiteNotFoundErr);
    ++theHost().held[suiteRow(name, version)];
    *suite = record;
    return kNoErr;
}

// A release of what is not held is no failure: plug-ins release their whole table.
AIErr releaseSuite(const char* name, std::int32_t version) {
    const int row = suiteRow(&deref(name), version);
    require(row >= 0, kSuiteNotFoundErr);
    int& held = theHost().held[row];
    held = std::max(held - 1, 0);
    return kNoErr;
}

AIBoolean isEqual(const char* a, const char* b) { return a != nullptr && b != nullptr && std::strcmp(a, b) == 0; }

AIErr allocateBlock(std::int64_t size, void** block) {
    deref(block) = nullptr;
    require(size >= 0);
    const HostState* host = runningHost();
    require(host == nullptr || !host->fails("block"), kOutOfMemoryErr);
    *block = std::calloc(1, static_cast<std::size_t>(std::max<std::int64_t>(size, 1)));
    require(*block != nullptr, kOutOfMemoryErr);
    return kNoErr;
}

AIErr freeBlock(void* block) {
    std::free(block);
    return kNoErr;
}

AIErr getPluginAccess(SPPluginRef plugin, SPAccessRef* access) {
    requirePlugin(plugin);
    deref(access) = makeHandle<SPAccessRef>(1);
    return kNoErr;
}

AIErr getAccessModule(SPAccessRef access, SPPlatformModule* module) {
    numberOf(access);
    deref(module) = theHost().module;
    return kNoErr;
}

AIErr getPluginOptions(SPPluginRef plugin, std::int32_t* options) {
    requirePlugin(plugin);
    deref(options) = theHost().pluginOptions;
    return kNoErr;
}

AIErr setPluginOptions(SPPluginRef plugin, std::int32_t options) {
    requirePlugin(plugin);
    theHost().pluginOptions = options;
    return kNoErr;
}

// --- real numbers ----------------------------------------------------------------------------------------------------

AIBoolean realPointsEqual(const RealPoint* a, const RealPoint* b) { return deref(a).h == deref(b).h && a->v == b->v; }

float realPointLength(const RealPoint* a, const RealPoint* b) {
    const RealPoint from = deref(a), to = deref(b);
    const double h = double{to.h} - from.h, v = double{to.v} - from.v;
    return static_cast<float>(std::sqrt(h * h + v * v));
}

float realPointAngle(const RealPoint* a, const RealPoint* b) {
    const RealPoint from = deref(a), to = deref(b);
    return static_cast<float>(std::atan2(double{to.v} - from.v, double{to.h} - from.h));
}

void realPointAdd(const RealPoint* a, const RealPoint* b, RealPoint* sum) {
    deref(sum) = {deref(a).h + deref(b).h, a->v + b->v};
}

float realAdd(float a, float b) { return a + b; }
float realSubtract(float a, float b) { return a - b; }

void realRectInset(RealRect* rect, float dh, float dv) {
    deref(rect).left += dh;
    rect->right -= dh;
    rect->bottom += dv;
    rect->top -= dv;
}

AIBoolean realPointInRect(const RealRect* rect, const RealPoint* point) {
    return deref(rect).left <= deref(point).h && point->h <= rect->right && rect->bottom <= point->v &&
           point->v <= rect->top;
}

void realRectUnion(const RealRect* a, const RealRect* b, RealRect* result) {
    deref(result) = doc::uniteRects(deref(a), deref(b));
}

void realRectEmptySet(RealRect* rect) { deref(rect) = doc::emptyRect(); }

AIBoolean realRectIntersect(const RealRect* a, const RealRect* b, RealRect* result) {
    const RealRect first = deref(a), second = deref(b);
    const RealRect common{std::max(first.left, second.left), std::min(first.top, second.top),
                          std::min(first.right, second.right), std::max(first.bottom, second.bottom)};
    const bool meet = !doc::isEmpty(first) && !doc::isEmpty(second) && !doc::isEmpty(common);
    deref(result) = meet ? common : doc::emptyRect();
    return meet;
}

AIBoolean realRectIsEmpty(const RealRect* rect) { return doc::isEmpty(deref(rect)); }

void matrixSetIdentity(RealMatrix* matrix) { deref(matrix) = {1, 0, 0, 1, 0, 0}; }
void matrixSetTranslate(RealMatrix* matrix, float h, float v) { deref(matrix) = {1, 0, 0, 1, h, v}; }
void matrixSetScale(RealMatrix* matrix, float h, float v) { deref(matrix) = {h, 0, 0, v, 0, 0}; }

RealMatrix rotation(float radians) {
    const auto c = static_cast<float>(std::cos(double{radians})), s = static_cast<float>(std::sin(double{radians}));
    return {c, s, -s, c, 0, 0};
}

void matrixSetRotate(RealMatrix* matrix, float radians) { deref(matrix) = rotation(radians); }

void matrixConcatTranslate(RealMatrix* matrix, float h, float v) {
    *matrix = doc::concatMatrix(deref(matrix), {1, 0, 0, 1, h, v});
}

void matrixConcatRotate(RealMatrix* matrix, float radians) {
    *matrix = doc::concatMatrix(deref(matrix), rotation(radians));
}

void matrixConcatScale(RealMatrix* matrix, float h, float v) {
    *matrix = doc::concatMatrix(deref(matrix), {h, 0, 0, v, 0, 0});
}

// --- strings and random numbers --------------------------------------------------------------------------------------

AIErr stringFromCodePage(const char* bytes, std::int32_t size, std::int32_t codePage, AIUnicodeStringRef* string) {
    require(size >= 0 && (bytes != nullptr || size == 0) && string != nullptr && codePageKnown(codePage));
    const std::u16string text = fromCodePage({bytes, static_cast<std::size_t>(size)}, codePage);
    *string =
        keepInArena<AIUnicodeStringRef>(theHost().arena.strings, std::vector<std::uint16_t>(text.begin(), text.end()));
    return kNoErr;
}

AIErr stringGetUtf16(AIUnicodeStringRef string, const std::uint16_t** units, std::int32_t* count) {
    require(units != nullptr && count != nullptr);
    const std::vector<std::uint16_t>& text = arenaItem(theHost().arena.strings, string);
    *units = text.data();
    *count = static_cast<std::int32_t>(text.size());
    return kNoErr;
}

// 24 bits are all that a float holds: below 1 in any case.
float floatRandom() { return static_cast<float>(theHost().random() >> 40) * 0x1p-24f; }

}  // namespace

const SPBasicSuite& basicSuite() {
    static const SPBasicSuite suite = [] {
        auto s = refusingSuite<SPBasicSuite>();
        s.AcquireSuite = slot<acquireSuite>;
        s.ReleaseSuite = slot<releaseSuite>;
        s.IsEqual = booleanSlot<isEqual>;
        s.AllocateBlock = slot<allocateBlock>;
        s.FreeBlock = slot<freeBlock>;
        return s;
    }();
    return suite;
}

SuiteRecord accessSuite() {
    static const SPAccessSuite suite = [] {
        auto s = refusingSuite<SPAccessSuite>();
        s.GetPluginAccess = slot<getPluginAccess>;
        s.GetAccessModule = slot<getAccessModule>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord pluginSuite() {
    static const AIPluginSuite suite = [] {
        auto s = refusingSuite<AIPluginSuite>();
        s.GetPluginOptions = slot<getPluginOptions>;
        s.SetPluginOptions = slot<setPluginOptions>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord realMathSuite() {
    static const AIRealMathSuite suite = [] {
        auto s = refusingSuite<AIRealMathSuite>();
        s.AIRealPointsEqual = booleanSlot<realPointsEqual>;
        s.AIRealPointLength = slot<realPointLength>;
        s.AIRealPointAngle = slot<realPointAngle>;
        s.AIRealPointAdd = slot<realPointAdd>;
        s.AIRealAdd = slot<realAdd>;
        s.AIRealSubtract = slot<realSubtract>;
        s.AIRealRectInset = slot<realRectInset>;
        s.AIRealPointInRect = booleanSlot<realPointInRect>;
        s.AIRealRectUnion = slot<realRectUnion>;
        s.AIRealRectEmptySet = slot<realRectEmptySet>;
        s.AIRealRectIntersect = booleanSlot<realRectIntersect>;
        s.AIRealRectIsEmpty = booleanSlot<realRectIsEmpty>;
        s.AIRealMatrixSetIdentity = slot<matrixSetIdentity>;
        s.AIRealMatrixSetTranslate = slot<matrixSetTranslate>;
        s.AIRealMatrixSetRotate = slot<matrixSetRotate>;
        s.AIRealMatrixSetScale = slot<matrixSetScale>;
        s.AIRealMatrixConcatTranslate = slot<matrixConcatTranslate>;
        s.AIRealMatrixConcatRotate = slot<matrixConcatRotate>;
        s.AIRealMatrixConcatScale = slot<matrixConcatScale>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord unicodeStringSuite() {
    static const AIUnicodeStringSuite suite = [] {
        auto s = refusingSuite<AIUnicodeStringSuite>();
        s.FromCodePage = slot<stringFromCodePage>;
        s.GetUTF16 = slot<stringGetUtf16>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord randomSuite() {
    static const AIRandomSuite suite = [] {
        auto s = refusingSuite<AIRandomSuite>();
        s.FloatRnd = slot<floatRandom>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
