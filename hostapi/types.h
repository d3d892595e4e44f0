// The words that the plug-in and its host share: result codes, handles, points, rectangles, matrices, path segments
// and paint. Everything is plain data of fixed layout, so that the two sides may come from different compilers.
#pragma once

#include <cstdint>

namespace quorvel {

// Result of every host call and message: 0 is success, negative numbers are system errors, else a four-character code.
using AIErr = std::int32_t;
using AIBoolean = std::int32_t;

constexpr AIErr kNoErr = 0;
constexpr AIErr kOutOfMemoryErr = -108;
constexpr AIErr kBadParameterErr = 0x5041524D;   // 'PARM'
constexpr AIErr kRefusedErr = 0x52465344;        // 'RFSD': the slot is offered but not served here
constexpr AIErr kSuiteNotFoundErr = 0x53214664;  // 'S!Fd'
constexpr AIErr kCanceledErr = 0x53544F50;       // 'STOP'
constexpr AIErr kNoDocumentErr = 0x4E444F43;     // 'NDOC'
constexpr AIErr kStaleHandleErr = 0x5354414C;    // 'STAL': the handle's object is gone
constexpr AIErr kLockedErr = 0x4C4F434B;         // 'LOCK'

// Handles are names, never addresses: a handle whose object is gone is refused, not followed. Null is "none".
using AIArtHandle = struct AIArtObject*;
using AILayerHandle = struct AILayerObject*;
using AIDocumentViewHandle = struct AIDocumentViewObject*;
using AIToolHandle = struct AIToolObject*;
using AIMenuItemHandle = struct AIMenuItemObject*;
using AIMenuGroup = struct AIMenuGroupObject*;
using AITimerHandle = struct AITimerObject*;
using AINotifierHandle = struct AINotifierObject*;
using AIPanelRef = struct AIPanelObject*;
using AIPanelFlyoutMenuRef = struct AIPanelFlyoutMenuObject*;
using AIPlatformWindow = void*;  // platform::WindowRef of the host's window
using AIFontKey = struct AIFontObject*;
using AIActionParamValueRef = struct AIActionParamObject*;
using AIUnicodeStringRef = struct AIUnicodeStringObject*;
using SPPluginRef = struct SPPluginObject*;
using SPAccessRef = struct SPAccessObject*;
using SPPlatformModule = void*;  // the plug-in's own loaded library, from which resources come

// References of the text engine. They live until the message in which they were got has returned.
using ATETextRangeRef = struct ATETextRangeObject*;
using ATECharFeaturesRef = struct ATECharFeaturesObject*;
using ATEParaFeaturesRef = struct ATEParaFeaturesObject*;
using ATEApplicationPaintRef = struct ATEApplicationPaintObject*;
using ATEFontRef = struct ATEFontObject*;

// A document point: points (1/72 inch), h to the right, v up, origin at the page's lower left corner.
struct RealPoint {
    float h = 0, v = 0;
};

// A pixel of a view: h to the right, v down.
struct AIPoint {
    std::int32_t h = 0, v = 0;
};

// y up: top >= bottom. An empty set has left > right.
struct RealRect {
    float left = 0, top = 0, right = 0, bottom = 0;
};

// (h, v) -> (a h + c v + tx, b h + d v + ty).
struct RealMatrix {
    float a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;
};

// One anchor of a path: the curve to the next segment T has the control points p, out, T.in, T.p.
struct PathSegment {
    RealPoint p, in, out;
    AIBoolean corner = 0;
};
static_assert(sizeof(PathSegment) == 28);

enum AIArtType : std::int16_t {
    kUnknownArt = 0,
    kGroupArt = 1,
    kPathArt = 2,
    kCompoundPathArt = 3,
    kTextFrameArt = 12,
    kForeignArt = 20,  // an image or another element that is kept and never entered
};

// Where new art or a new layer goes.
enum AIPaintOrder : std::int16_t {
    kPlaceAbove = 1,        // directly above the prepositional art
    kPlaceBelow = 2,        // directly below it
    kPlaceInsideOnTop = 3,  // the topmost child of it
    kPlaceInsideOnBottom = 4,
    kPlaceAboveAll = 5,  // above everything; no prepositional object
};

enum AIArtUserAttr : std::int32_t {
    kArtSelected = 1,
    kArtLocked = 2,
    kArtHidden = 4,
};

enum AISegmentSelection : std::int16_t {
    kSegmentNotSelected = 0,
    kSegmentPointSelected = 1,
    kSegmentInSelected = 2,
    kSegmentOutSelected = 3,
    kSegmentInAndOutSelected = 4,
};

enum AITransformBoundsOption : std::int32_t {
    kTransformBoundsWithControls = 2,  // with control points, without stroke
};

enum AIPaintKind : std::int16_t {
    kGrayPaint = 0,  // gray 1.0 is black
    kRgbPaint = 1,
    kOtherPaint = 2,     // a pattern or the like: kept as it is
    kGradientPaint = 4,  // two angles in degrees
};

struct AIColor {
    std::int16_t kind = kGrayPaint;
    float gray = 0;                 // 0 white to 1 black
    float rgb[3] = {0, 0, 0};       // 0 to 1
    float gradientAngle = 0;        // degrees, counter-clockwise
    float gradientHiliteAngle = 0;  // degrees
    std::int32_t reference = 0;     // the host's own number of a gradient or pattern; 0 for none
};

struct AIPathStyle {
    AIBoolean fillPaint = 0;
    AIBoolean strokePaint = 0;
    AIColor fill;
    AIColor stroke;
    float strokeWidth = 0;  // points
    float miterLimit = 0;
    std::int32_t cap = 0;   // 0 butt, 1 round, 2 square
    std::int32_t join = 0;  // 0 miter, 1 round, 2 bevel
    float dashOffset = 0;
    std::int32_t dashCount = 0;  // 0 solid
    float dashes[6] = {0, 0, 0, 0, 0, 0};
};

enum AITextFrameType : std::int32_t { kPointTextType = 0, kInPathTextType = 1, kOnPathTextType = 2 };
enum AITextOrientation : std::int16_t { kHorizontalText = 0, kVerticalText = 1 };
enum ATEJustification : std::int32_t { kJustifyLeft = 0, kJustifyRight = 1, kJustifyCenter = 2 };

// Points. Nothing farther from the origin can be read from a file, so nothing farther is drawn.
constexpr float kLargestCoordinate = 1e9F;

// Flags of TransformArt.
enum AITransformArtOption : std::int32_t { kTransformObjects = 1 };

// Bits of an event's modifier word.
constexpr std::uint16_t kAltModifier = 0x800;
constexpr std::uint16_t kShiftModifier = 0x200;

}  // namespace quorvel
