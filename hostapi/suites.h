// The host's operations, gathered in suites. A suite is a record of function pointers that SPBasicSuite::AcquireSuite
// gives by name and version for the length of one message. Every slot can be called: one that a host does not serve
// refuses (kRefusedErr, or the zero of its result). The object worked on comes first, results come last through
// pointers and keep their value on failure; no exception crosses. "const char*" is text in UTF-8 unless it says
// otherwise; a pointer that a slot gives stays the host's and lives until the message has returned.
#pragma once

#include "hostapi/types.h"

namespace quorvel {

struct SPBasicSuite {
    // Gives the suite's record; kSuiteNotFoundErr leaves *suite null.
    AIErr (*AcquireSuite)(const char* name, std::int32_t version, const void** suite);
    AIErr (*ReleaseSuite)(const char* name, std::int32_t version);
    // Nonzero when the two texts are equal.
    AIBoolean (*IsEqual)(const char* a, const char* b);
    // A zeroed block that lives until FreeBlock; kOutOfMemoryErr leaves *block null.
    AIErr (*AllocateBlock)(std::int64_t size, void** block);
    AIErr (*FreeBlock)(void* block);
};

struct SPAccessSuite {
    AIErr (*GetPluginAccess)(SPPluginRef plugin, SPAccessRef* access);
    AIErr (*GetAccessModule)(SPAccessRef access, SPPlatformModule* module);
};

struct AIPluginSuite {
    AIErr (*GetPluginOptions)(SPPluginRef plugin, std::int32_t* options);
    AIErr (*SetPluginOptions)(SPPluginRef plugin, std::int32_t options);
};

// Real numbers, points, rectangles (y up, tests inclusive) and matrices. Pure: may be called at any time.
struct AIRealMathSuite {
    // Nonzero when both coordinates are exactly equal.
    AIBoolean (*AIRealPointsEqual)(const RealPoint* a, const RealPoint* b);
    float (*AIRealPointLength)(const RealPoint* a, const RealPoint* b);
    // Direction from a to b in radians, -pi to pi.
    float (*AIRealPointAngle)(const RealPoint* a, const RealPoint* b);
    void (*AIRealPointAdd)(const RealPoint* a, const RealPoint* b, RealPoint* sum);
    float (*AIRealAdd)(float a, float b);
    float (*AIRealSubtract)(float a, float b);
    // Shrinks by dh and dv on each side; negative values grow.
    void (*AIRealRectInset)(RealRect* rect, float dh, float dv);
    AIBoolean (*AIRealPointInRect)(const RealRect* rect, const RealPoint* point);
    // An empty rectangle adds nothing.
    void (*AIRealRectUnion)(const RealRect* a, const RealRect* b, RealRect* result);
    void (*AIRealRectEmptySet)(RealRect* rect);
    // Nonzero when the two overlap or touch; *result is the common part, else the empty set.
    AIBoolean (*AIRealRectIntersect)(const RealRect* a, const RealRect* b, RealRect* result);
    AIBoolean (*AIRealRectIsEmpty)(const RealRect* rect);
    void (*AIRealMatrixSetIdentity)(RealMatrix* matrix);
    void (*AIRealMatrixSetTranslate)(RealMatrix* matrix, float h, float v);
    void (*AIRealMatrixSetRotate)(RealMatrix* matrix, float radians);
    void (*AIRealMatrixSetScale)(RealMatrix* matrix, float h, float v);
    // The new step comes after what the matrix does already.
    void (*AIRealMatrixConcatTranslate)(RealMatrix* matrix, float h, float v);
    void (*AIRealMatrixConcatRotate)(RealMatrix* matrix, float radians);
    void (*AIRealMatrixConcatScale)(RealMatrix* matrix, float h, float v);
};

struct AIArtSuite {
    // kind: kGroupArt or kPathArt. prep: the art that the placement speaks of; its layer must be visible and editable.
    AIErr (*NewArt)(std::int16_t kind, std::int16_t placement, AIArtHandle prep, AIArtHandle* art);
    // Removes the art with its children; their handles are stale from then on (an undo makes them good again).
    AIErr (*DisposeArt)(AIArtHandle art);
    // The layer's root group. A null layer stands for the current one.
    AIErr (*GetFirstArtOfLayer)(AILayerHandle layer, AIArtHandle* art);
    AIErr (*GetLayerOfArt)(AIArtHandle art, AILayerHandle* layer);
    AIErr (*GetArtType)(AIArtHandle art, std::int16_t* kind);
    // The bits of AIArtUserAttr that the mask selects.
    AIErr (*GetArtUserAttr)(AIArtHandle art, std::int32_t mask, std::int32_t* attributes);
    AIErr (*SetArtUserAttr)(AIArtHandle art, std::int32_t mask, std::int32_t attributes);
    // Top first; null at the end and for art that has no children.
    AIErr (*GetArtFirstChild)(AIArtHandle art, AIArtHandle* child);
    AIErr (*GetArtSibling)(AIArtHandle art, AIArtHandle* sibling);
    // The tight geometric box, without stroke; a group's is the union of its children's.
    AIErr (*GetArtBounds)(AIArtHandle art, RealRect* bounds);
    // Option kTransformBoundsWithControls: the box of anchors and control points. A null matrix is the identity.
    AIErr (*GetArtTransformBounds)(AIArtHandle art, const RealMatrix* matrix, std::int32_t options, RealRect* bounds);
};

struct AILayerSuite {
    AIErr (*CountLayers)(std::int32_t* count);
    // 0 is the top layer.
    AIErr (*GetNthLayer)(std::int32_t index, AILayerHandle* layer);
    AIErr (*GetCurrentLayer)(AILayerHandle* layer);
    // Null, with success, when no layer has the title.
    AIErr (*GetLayerByTitle)(AIUnicodeStringRef title, AILayerHandle* layer);
    AIErr (*InsertLayer)(AILayerHandle prep, std::int16_t placement, AILayerHandle* layer);
    AIErr (*SetLayerTitle)(AILayerHandle layer, AIUnicodeStringRef title);
    AIErr (*GetLayerVisible)(AILayerHandle layer, AIBoolean* visible);
    AIErr (*GetLayerEditable)(AILayerHandle layer, AIBoolean* editable);
};

struct AIPathSuite {
    AIErr (*GetPathSegmentCount)(AIArtHandle path, std::int16_t* count);
    // Grows with zeroed segments or cuts at the end.
    AIErr (*SetPathSegmentCount)(AIArtHandle path, std::int16_t count);
    AIErr (*GetPathSegments)(AIArtHandle path, std::int16_t first, std::int16_t count, PathSegment* segments);
    // Writing behind the last segment grows the path; a gap is refused.
    AIErr (*SetPathSegments)(AIArtHandle path, std::int16_t first, std::int16_t count, const PathSegment* segments);
    AIErr (*GetPathClosed)(AIArtHandle path, AIBoolean* closed);
    AIErr (*SetPathClosed)(AIArtHandle path, AIBoolean closed);
    AIErr (*GetPathGuide)(AIArtHandle path, AIBoolean* guide);
    // AISegmentSelection; a path that is selected whole answers kSegmentPointSelected everywhere.
    AIErr (*GetPathSegmentSelected)(AIArtHandle path, std::int16_t index, std::int16_t* selected);
    AIErr (*SetPathSegmentSelected)(AIArtHandle path, std::int16_t index, std::int16_t selected);
};

struct AIPathStyleSuite {
    AIErr (*GetPathStyle)(AIArtHandle path, AIPathStyle* style);
    AIErr (*SetPathStyle)(AIArtHandle path, const AIPathStyle* style);
    // The style that the next new path of the host itself would get.
    AIErr (*GetCurrentPathStyle)(AIPathStyle* style);
};

// Named texts on art. Values are bytes up to the closing zero, kept as they are.
constexpr char kStringTag[] = "string";
struct AITagSuite {
    // type: kStringTag is the one that is served.
    AIErr (*SetTag)(AIArtHandle art, const char* name, const char* type, const void* value);
    // A tag that is absent gives success and null. The text lives until the tag changes or the message returns.
    AIErr (*GetTag)(AIArtHandle art, const char* name, const char* type, const void** value);
    AIErr (*RemoveTag)(AIArtHandle art, const char* name);
};

struct AITextFrameSuite {
    AIErr (*NewPointText)(std::int16_t placement, AIArtHandle prep, std::int16_t orientation, RealPoint anchor,
                          AIArtHandle* frame);
    AIErr (*GetTextFrameType)(AIArtHandle frame, std::int32_t* type);
    // Where the anchor of a point text is in the document.
    AIErr (*GetPointTextAnchor)(AIArtHandle frame, RealPoint* anchor);
    // The path of a text in or on a path.
    AIErr (*GetPathObject)(AIArtHandle frame, AIArtHandle* path);
    // The whole text of the frame.
    AIErr (*GetATETextRange)(AIArtHandle frame, ATETextRangeRef* range);
};

struct ATETextRangeSuite {
    // Removes the text that the range spans; the range is empty then.
    AIErr (*Remove)(ATETextRangeRef range);
    // UTF-16 units behind the range's end; the range then spans them too.
    AIErr (*InsertAfter)(ATETextRangeRef range, const std::uint16_t* units, std::int32_t count);
    AIErr (*GetStart)(ATETextRangeRef range, std::int32_t* start);
    AIErr (*GetEnd)(ATETextRangeRef range, std::int32_t* end);
    // 0 <= start <= end <= the frame's length.
    AIErr (*SetRange)(ATETextRangeRef range, std::int32_t start, std::int32_t end);
    // A copy of the features at the range's start, to be changed and applied.
    AIErr (*GetLocalCharFeatures)(ATETextRangeRef range, ATECharFeaturesRef* features);
    // An empty range keeps them for the text that is inserted next.
    AIErr (*SetLocalCharFeatures)(ATETextRangeRef range, ATECharFeaturesRef features);
    AIErr (*GetLocalParaFeatures)(ATETextRangeRef range, ATEParaFeaturesRef* features);
    AIErr (*SetLocalParaFeatures)(ATETextRangeRef range, ATEParaFeaturesRef features);
};

struct ATECharFeaturesSuite {
    AIErr (*SetFont)(ATECharFeaturesRef features, ATEFontRef font);
    AIErr (*SetFontSize)(ATECharFeaturesRef features, float points);
    AIErr (*SetFillColor)(ATECharFeaturesRef features, ATEApplicationPaintRef paint);
    AIErr (*SetStrokeColor)(ATECharFeaturesRef features, ATEApplicationPaintRef paint);
    AIErr (*SetFill)(ATECharFeaturesRef features, AIBoolean on);
    AIErr (*SetStroke)(ATECharFeaturesRef features, AIBoolean on);
    AIErr (*SetMiterLimit)(ATECharFeaturesRef features, float limit);
    // 1.0 is unscaled.
    AIErr (*SetHorizontalScale)(ATECharFeaturesRef features, float scale);
    AIErr (*SetVerticalScale)(ATECharFeaturesRef features, float scale);
    // Points above the baseline.
    AIErr (*SetBaselineShift)(ATECharFeaturesRef features, float points);
};

struct ATEParaFeaturesSuite {
    AIErr (*SetFirstLineIndent)(ATEParaFeaturesRef features, float points);
    AIErr (*SetStartIndent)(ATEParaFeaturesRef features, float points);
    // ATEJustification.
    AIErr (*SetJustification)(ATEParaFeaturesRef features, std::int32_t justification);
};

struct AIATEPaintSuite {
    AIErr (*CreateApplicationPaint)(const AIColor* color, ATEApplicationPaintRef* paint);
};

struct AIFontSuite {
    AIErr (*CountFonts)(std::int32_t* count);
    // From 0, in the order of the host's font list; index 0 is the host's standard font.
    AIErr (*GetNthFont)(std::int32_t index, AIFontKey* font);
    // The name by which a font is chosen and kept: its full name, such as "DejaVu Sans Bold". Zero-terminated, cut to
    // size - 1 bytes.
    AIErr (*GetFontName)(AIFontKey font, char* name, std::int32_t size);
    // The full name as the user reads it.
    AIErr (*GetFullFontName)(AIFontKey font, char* name, std::int32_t size);
    // The PostScript name.
    AIErr (*GetSystemFontName)(AIFontKey font, char* name, std::int32_t size);
    AIErr (*FontRefFromFontKey)(AIFontKey font, ATEFontRef* textFont);
    // The advance of one character, given in UTF-8, at size 1, unhinted.
    AIErr (*GetCharacterWidth)(AIFontKey font, const char* utf8, std::int32_t bytes, float* width);
};

struct AITransformArtSuite {
    // Moves the art by the matrix, children too; lineScale multiplies stroke widths. options: AITransformArtOption.
    AIErr (*TransformArt)(AIArtHandle art, const RealMatrix* matrix, float lineScale, std::int32_t options);
};

struct AIDocumentViewSuite {
    // 0 is the front view; null, with success, when no document is open.
    AIErr (*GetNthDocumentView)(std::int32_t index, AIDocumentViewHandle* view);
    // Pixels per point.
    AIErr (*GetDocumentViewZoom)(AIDocumentViewHandle view, float* zoom);
    AIErr (*GetDocumentViewCenter)(AIDocumentViewHandle view, RealPoint* centre);
    AIErr (*ArtworkPointToViewPoint)(AIDocumentViewHandle view, const RealPoint* artwork, AIPoint* viewPoint);
};

struct AIUserSuite {
    AIErr (*ErrorAlert)(AIUnicodeStringRef text);
    // 1 for yes, 0 for no.
    AIBoolean (*YesNoAlert)(AIUnicodeStringRef text);
    AIErr (*SetProgress)(std::int32_t current, std::int32_t maximum);
    // The value (points) in the document's ruler unit with its suffix (in, cm, pt, p0 for picas, mm, px, H);
    // precision -1 takes the unit's own. In the system code page.
    AIErr (*FormatWithRulerUnit)(float points, std::int32_t precision, char* text, std::int32_t size);
};

struct AIUndoSuite {
    // Drops what has changed since the message began.
    AIErr (*UndoChanges)();
    // Names the undo step that this message makes.
    AIErr (*SetUndoTextUS)(AIUnicodeStringRef undo, AIUnicodeStringRef redo);
};

struct AIRandomSuite {
    // 0 <= result < 1.
    float (*FloatRnd)();
};

struct AIMenuItemData {
    const char* group = nullptr;  // the name of the host's menu group
    AIUnicodeStringRef text = nullptr;
};

enum AIMenuItemOption : std::int32_t { kMenuItemNoOptions = 0, kMenuItemWantsUpdate = 1 };
enum AIMenuGroupOption : std::int32_t { kMenuGroupSorted = 1 };

struct AIMenuSuite {
    AIErr (*AddMenuItem)(SPPluginRef plugin, const char* name, const AIMenuItemData* data, std::int32_t options,
                         AIMenuItemHandle* item);
    AIErr (*CheckItem)(AIMenuItemHandle item, AIBoolean checked);
    AIErr (*CountMenuGroups)(std::int32_t* count);
    AIErr (*GetNthMenuGroup)(std::int32_t index, AIMenuGroup* group);
    AIErr (*GetMenuGroupName)(AIMenuGroup group, const char** name);
    AIErr (*AddMenuGroupAsSubMenu)(const char* name, std::int32_t options, AIMenuItemHandle item, AIMenuGroup* group);
};

constexpr std::int32_t kNoTool = 65534;  // "opens its own group" or toolset

struct AIAddToolData {
    const char* title = nullptr;    // system code page
    const char* tooltip = nullptr;  // system code page
    std::int32_t iconId = 0;
    std::int32_t darkIconId = 0;
    std::int32_t sameGroupAs = kNoTool;    // the number of a tool
    std::int32_t sameToolsetAs = kNoTool;  // the number of a tool
};

struct AIToolSuite {
    // The name is in the system code page.
    AIErr (*AddTool)(SPPluginRef plugin, const char* name, const AIAddToolData* data, std::int32_t options,
                     AIToolHandle* tool);
    AIErr (*GetToolNumberFromName)(const char* name, std::int32_t* number);
    // The title in the system code page, zero-terminated.
    AIErr (*GetToolTitle)(AIToolHandle tool, char* title, std::int32_t size);
};

struct AITimerSuite {
    // period in sixtieths of a second.
    AIErr (*AddTimer)(SPPluginRef plugin, const char* name, std::int32_t period, AITimerHandle* timer);
};

struct AINotifierSuite {
    AIErr (*AddNotifier)(SPPluginRef plugin, const char* name, const char* type, AINotifierHandle* notifier);
};

struct AIActionManagerSuite {
    AIErr (*NewActionParamValue)(AIActionParamValueRef* parameters);
    AIErr (*DeleteActionParamValue)(AIActionParamValueRef parameters);
    // The parameters describe the event; localizedName is shown to the user.
    AIErr (*RegisterActionEvent)(SPPluginRef plugin, const char* event, const char* localizedName, std::int32_t version,
                                 AIActionParamValueRef parameters);
    AIErr (*PlayActionEvent)(const char* event, std::int32_t dialogState, AIActionParamValueRef parameters);
};

using AIPanelFlyoutProc = void (*)(AIPanelRef panel, std::int32_t item);

struct AIPanelSize {
    std::int32_t width = 0, height = 0;
};

struct AIPanelSuite {
    AIErr (*Create)(SPPluginRef plugin, const char* identifier, AIUnicodeStringRef title, std::int32_t stateCount,
                    AIPanelSize minimum, AIPanelFlyoutMenuRef flyout, AIPanelRef* panel);
    AIErr (*Destroy)(AIPanelRef panel);
    AIErr (*IsShown)(AIPanelRef panel, AIBoolean* shown);
    AIErr (*Show)(AIPanelRef panel, AIBoolean shown);
    // The window that holds the panel's controls; null when it has none.
    AIErr (*GetPlatformWindow)(AIPanelRef panel, AIPlatformWindow* window);
    AIErr (*SetFlyoutMenuProc)(AIPanelRef panel, AIPanelFlyoutProc proc);
};

struct AIPanelFlyoutMenuSuite {
    AIErr (*Create)(AIPanelFlyoutMenuRef* menu);
    AIErr (*Destroy)(AIPanelFlyoutMenuRef menu);
    AIErr (*InsertItem)(AIPanelFlyoutMenuRef menu, std::int32_t item, AIUnicodeStringRef text);
};

enum AIThemeComponent : std::int32_t { kThemeBackground = 0, kThemeText = 1 };

struct AIUIThemeSuite {
    // color[1..3]: red, green, blue, 0 to 1; color[0] is alpha.
    AIErr (*GetUIThemeColor)(std::int32_t component, float color[4]);
    // 0 for a light theme, nonzero for a dark one.
    AIErr (*GetThemeValue)(AIPlatformWindow window, std::int16_t* value);
};

struct AIUnicodeStringSuite {
    // codePage: 932, 949, 65001. The string lives until the message returns.
    AIErr (*FromCodePage)(const char* bytes, std::int32_t size, std::int32_t codePage, AIUnicodeStringRef* string);
    AIErr (*GetUTF16)(AIUnicodeStringRef string, const std::uint16_t** units, std::int32_t* count);
};

// The art query suite: answers that a host with an index gives at once and a plug-in without it has to walk for.
// Arts come in walk order (layers top first, in each depth first with the first child first).
struct AIArtQuerySuite {
    // The paths and text frames of the layer whose transform bounds (with controls), grown by tolerance on each side,
    // hold the point, bounds inclusive in 32-bit floats as AIRealRectInset and AIRealPointInRect compute them. A point
    // text counts by its anchor instead, which must be within tolerance of the point on each axis, wherever its letters
    // stand. Art inside a group or compound path that has the tag excludeUnder (null: none) is left out. The array
    // lives until the message returns or the next query.
    AIErr (*FindArtAtPoint)(AILayerHandle layer, const RealPoint* point, float tolerance, const char* excludeUnder,
                            const AIArtHandle** arts, std::int32_t* count);
    // The art of all layers that has this value in this tag; a null value asks for any value. Whole numbers are equal
    // when their values are, whatever zeros are ahead of them.
    AIErr (*FindArtByTag)(const char* name, const char* value, const AIArtHandle** arts, std::int32_t* count);
    // The art that holds it; null for a layer's root group.
    AIErr (*GetArtParent)(AIArtHandle art, AIArtHandle* parent);
    // A number that changes whenever art, layers or the selection have changed.
    AIErr (*GetChangeCount)(std::uint64_t* count);
};

}  // namespace quorvel
