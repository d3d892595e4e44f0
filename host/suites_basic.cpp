// The suites that a plug-in needs before it touches a drawing: acquiring the others, blocks of memory, its own module,
// numbers and rectangles, Unicode strings and random numbers.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "host/bounds.h"
#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- SP --------------------------------------------------------------------------------------------------------------

AIErr acquireSuite(const char* name, std::int32_t version, const void** suite) {
    given(suite) = nullptr;
    const void* record = findSuite(&given(name), version);
    require(record != nullptr, kSuiteNotFoundErr);
    ++theHost().held[suitePlace(name, version)];
    *suite = record;
    return kNoErr;
}

// A release of what is not held is no failure: plug-ins release their whole table.
AIErr releaseSuite(const char* name, std::int32_t version) {
    const int place = suitePlace(&given(name), version);
    require(place >= 0, kSuiteNotFoundErr);
    int& held = theHost().held[place];
    held = std::max(held - 1, 0);
    return kNoErr;
}

AIBoolean isEqual(const char* a, const char* b) { return a != nullptr && b != nullptr && std::strcmp(a, b) == 0; }

AIErr allocateBlock(std::int64_t size, void** block) {
    given(block) = nullptr;
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
    given(access) = makeHandle<SPAccessRef>(1);
    return kNoErr;
}

AIErr getAccessModule(SPAccessRef access, SPPlatformModule* module) {
    numberOf(access);
    given(module) = theHost().module;
    return kNoErr;
}

AIErr getPluginOptions(SPPluginRef plugin, std::int32_t* options) {
    requirePlugin(plugin);
    given(options) = theHost().pluginOptions;
    return kNoErr;
}

AIErr setPluginOptions(SPPluginRef plugin, std::int32_t options) {
    requirePlugin(plugin);
    theHost().pluginOptions = options;
    return kNoErr;
}

// --- real numbers ----------------------------------------------------------------------------------------------------

AIBoolean realPointsEqual(const RealPoint* a, const RealPoint* b) { return given(a).h == given(b).h && a->v == b->v; }

float realPointLength(const RealPoint* a, const RealPoint* b) {
    const RealPoint from = given(a), to = given(b);
    const double h = double{to.h} - from.h, v = double{to.v} - from.v;
    return static_cast<float>(std::sqrt(h * h + v * v));
}

float realPointAngle(const RealPoint* a, const RealPoint* b) {
    const RealPoint from = given(a), to = given(b);
    return static_cast<float>(std::atan2(double{to.v} - from.v, double{to.h} - from.h));
}

void realPointAdd(const RealPoint* a, const RealPoint* b, RealPoint* sum) {
    given(sum) = {given(a).h + given(b).h, a->v + b->v};
}

float realAdd(float a, float b) { return a + b; }
float realSubtract(float a, float b) { return a - b; }

void realRectInset(RealRect* rect, float dh, float dv) {
    given(rect).left += dh;
    rect->right -= dh;
    rect->bottom += dv;
    rect->top -= dv;
}

AIBoolean realPointInRect(const RealRect* rect, const RealPoint* point) {
    return given(rect).left <= given(point).h && point->h <= rect->right && rect->bottom <= point->v &&
           point->v <= rect->top;
}

void realRectUnion(const RealRect* a, const RealRect* b, RealRect* result) {
    given(result) = uniteRects(given(a), given(b));
}

void realRectEmptySet(RealRect* rect) { given(rect) = emptyRect(); }

AIBoolean realRectIntersect(const RealRect* a, const RealRect* b, RealRect* result) {
    const RealRect first = given(a), second = given(b);
    const RealRect common{std::max(first.left, second.left), std::min(first.top, second.top),
                          std::min(first.right, second.right), std::max(first.bottom, second.bottom)};
    const bool meet = !isEmpty(first) && !isEmpty(second) && !isEmpty(common);
    given(result) = meet ? common : emptyRect();
    return meet;
}

AIBoolean realRectIsEmpty(const RealRect* rect) { return isEmpty(given(rect)); }

void matrixSetIdentity(RealMatrix* matrix) { given(matrix) = {1, 0, 0, 1, 0, 0}; }
void matrixSetTranslate(RealMatrix* matrix, float h, float v) { given(matrix) = {1, 0, 0, 1, h, v}; }
void matrixSetScale(RealMatrix* matrix, float h, float v) { given(matrix) = {h, 0, 0, v, 0, 0}; }

RealMatrix rotation(float radians) {
    const auto c = static_cast<float>(std::cos(double{radians})), s = static_cast<float>(std::sin(double{radians}));
    return {c, s, -s, c, 0, 0};
}

void matrixSetRotate(RealMatrix* matrix, float radians) { given(matrix) = rotation(radians); }

void matrixConcatTranslate(RealMatrix* matrix, float h, float v) {
    *matrix = concatMatrix(given(matrix), {1, 0, 0, 1, h, v});
}

void matrixConcatRotate(RealMatrix* matrix, float radians) { *matrix = concatMatrix(given(matrix), rotation(radians)); }

void matrixConcatScale(RealMatrix* matrix, float h, float v) {
    *matrix = concatMatrix(given(matrix), {h, 0, 0, v, 0, 0});
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
        s.AcquireSuite = served<acquireSuite>;
        s.ReleaseSuite = served<releaseSuite>;
        s.IsEqual = servedBoolean<isEqual>;
        s.AllocateBlock = served<allocateBlock>;
        s.FreeBlock = served<freeBlock>;
        return s;
    }();
    return suite;
}

SuiteRecord accessSuite() {
    static const SPAccessSuite suite = [] {
        auto s = refusingSuite<SPAccessSuite>();
        s.GetPluginAccess = served<getPluginAccess>;
        s.GetAccessModule = served<getAccessModule>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord pluginSuite() {
    static const AIPluginSuite suite = [] {
        auto s = refusingSuite<AIPluginSuite>();
        s.GetPluginOptions = served<getPluginOptions>;
        s.SetPluginOptions = served<setPluginOptions>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord realMathSuite() {
    static const AIRealMathSuite suite = [] {
        auto s = refusingSuite<AIRealMathSuite>();
        s.AIRealPointsEqual = servedBoolean<realPointsEqual>;
        s.AIRealPointLength = served<realPointLength>;
        s.AIRealPointAngle = served<realPointAngle>;
        s.AIRealPointAdd = served<realPointAdd>;
        s.AIRealAdd = served<realAdd>;
        s.AIRealSubtract = served<realSubtract>;
        s.AIRealRectInset = served<realRectInset>;
        s.AIRealPointInRect = servedBoolean<realPointInRect>;
        s.AIRealRectUnion = served<realRectUnion>;
        s.AIRealRectEmptySet = served<realRectEmptySet>;
        s.AIRealRectIntersect = servedBoolean<realRectIntersect>;
        s.AIRealRectIsEmpty = servedBoolean<realRectIsEmpty>;
        s.AIRealMatrixSetIdentity = served<matrixSetIdentity>;
        s.AIRealMatrixSetTranslate = served<matrixSetTranslate>;
        s.AIRealMatrixSetRotate = served<matrixSetRotate>;
        s.AIRealMatrixSetScale = served<matrixSetScale>;
        s.AIRealMatrixConcatTranslate = served<matrixConcatTranslate>;
        s.AIRealMatrixConcatRotate = served<matrixConcatRotate>;
        s.AIRealMatrixConcatScale = served<matrixConcatScale>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord unicodeStringSuite() {
    static const AIUnicodeStringSuite suite = [] {
        auto s = refusingSuite<AIUnicodeStringSuite>();
        s.FromCodePage = served<stringFromCodePage>;
        s.GetUTF16 = served<stringGetUtf16>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord randomSuite() {
    static const AIRandomSuite suite = [] {
        auto s = refusingSuite<AIRandomSuite>();
        s.FloatRnd = served<floatRandom>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host
