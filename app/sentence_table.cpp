// The sentence of each error code in each language.
#include <array>

#include "app/sentences.h"

namespace quorvel::app {

namespace {

using enum ErrorCode;

constexpr SentenceRow kTable[] = {
    {kNone, 0, "", ""},
    {kSystem, 1, "system error {1}", "システムエラー {1}"},  // errno that has no text of its own

    // --- files -----------------------------------------------------------------------------------------------------
    {kDanglingLink, 1, "the link leads to \"{1}\", which does not exist", "リンク先の \"{1}\" がありません"},
    {kReadOnlyFile, 0, "the file is read-only", "読み取り専用のファイルです"},
    {kNotRegular, 0, "a device or pipe, not a file", "ファイルではなくデバイスかパイプです"},
    {kFileTooLarge, 1, "the file is larger than {1} MB", "ファイルが {1} MB を超えています"},

    // --- a drawing cannot be read ----------------------------------------------------------------------------------
    {kNotXmlInUtf8, 0, "not an XML file in UTF-8", "UTF-8 の XML ファイルではありません"},
    {kForeignEncoding, 1, "the file's encoding is \"{1}\"; only UTF-8 is read",
     "文字コードが \"{1}\" です。UTF-8 だけが読めます"},
    {kForeignByte, 0, "a byte that is no UTF-8", "UTF-8 でないバイトがあります"},
    {kXmlBadTag, 0, "not well-formed XML: Could not determine tag type",
     "正しい XML ではありません (タグの種類が分かりません)"},
    {kXmlBadInstruction, 0, "not well-formed XML: Error parsing document declaration/processing instruction",
     "正しい XML ではありません (XML 宣言または処理命令の誤り)"},
    {kXmlBadComment, 0, "not well-formed XML: Error parsing comment", "正しい XML ではありません (コメントの誤り)"},
    {kXmlBadCdata, 0, "not well-formed XML: Error parsing CDATA section",
     "正しい XML ではありません (CDATA セクションの誤り)"},
    {kXmlBadDocumentType, 0, "not well-formed XML: Error parsing document type declaration",
     "正しい XML ではありません (文書型宣言の誤り)"},
    {kXmlBadText, 0, "not well-formed XML: Error parsing PCDATA section",
     "正しい XML ではありません (文字データの誤り)"},
    {kXmlBadStartTag, 0, "not well-formed XML: Error parsing start element tag",
     "正しい XML ではありません (開始タグの誤り)"},
    {kXmlBadAttribute, 0, "not well-formed XML: Error parsing element attribute",
     "正しい XML ではありません (属性の誤り)"},
    {kXmlBadEndTag, 0, "not well-formed XML: Error parsing end element tag",
     "正しい XML ではありません (終了タグの誤り)"},
    {kXmlTagMismatch, 0, "not well-formed XML: Start-end tags mismatch",
     "正しい XML ではありません (開始タグと終了タグが対応していません)"},
    {kXmlNoElement, 0, "not well-formed XML: No document element found",
     "正しい XML ではありません (要素がありません)"},
    {kXmlNoMemory, 0, "not well-formed XML: Could not allocate memory", "XML を読むためのメモリーが足りません"},
    {kXmlSeveralRoots, 0, "not well-formed XML: more than one root element",
     "正しい XML ではありません (ルート要素が複数あります)"},
    {kBrokenEntity, 0, "broken entity", "実体の宣言が正しくありません"},
    {kExternalEntity, 0, "entities from outside are not read", "外部の実体は読み込みません"},
    {kNestedEntity, 0, "entities made of other entities or markup are not read",
     "ほかの実体やタグを含む実体は読み込みません"},
    {kEntitiesTooMany, 0, "too many or too long entities", "実体の数が多すぎるか、長すぎます"},
    {kEntitiesTooLarge, 0, "the entities expand to too much", "実体の展開が大きすぎます"},
    {kNotSvg, 0, "the file is XML but no SVG drawing", "XML ファイルですが SVG 図面ではありません"},
    {kElementsTooDeep, 1, "elements are nested more than {1} deep", "要素の入れ子が {1} 段を超えています"},
    {kNestedTooDeeply, 0, "nested too deeply", "入れ子が深すぎます"},
    {kStyleSheetsTooCostly, 0, "the style sheets ask for too much work", "スタイルシートの処理が多すぎます"},
    {kTooManyCopies, 0, "too many copies made by use elements", "use 要素による複製が多すぎます"},
    {kBadTransform, 0, "bad transform", "transform が正しくありません"},
    {kTransformOutOfRange, 0, "transform out of range", "transform が範囲を超えています"},
    {kViewBoxOutOfRange, 0, "viewBox out of range", "viewBox が範囲を超えています"},
    {kCoordinateOutOfRange, 0, "coordinate out of range", "座標が範囲を超えています"},
    {kPathOutOfRange, 0, "coordinate out of range in path data", "パスデータの座標が範囲を超えています"},
    {kPointsOutOfRange, 0, "coordinate out of range in points", "points の座標が範囲を超えています"},
    {kBadLength, 1, "bad length in {1}", "{1} の長さが正しくありません"},
    {kNoPathCommand, 2, "no path command at character {1}: \"{2}\"",
     "パスデータの {1} 文字目がコマンドではありません: \"{2}\""},
    {kNoFirstMove, 2, "path data must begin with a move at character {1}: \"{2}\"",
     "パスデータは移動で始まらなければなりません ({1} 文字目: \"{2}\")"},
    {kBadPathNumber, 2, "bad number in path data at character {1}: \"{2}\"",
     "パスデータの {1} 文字目の数値が正しくありません: \"{2}\""},
    {kPathCutOff, 1, "bad number in path data at character {1} (the end)", "パスデータが {1} 文字目で途切れています"},
    {kBadPointsNumber, 1, "bad number in points at character {1}", "points の {1} 文字目の数値が正しくありません"},
    {kTextUnreadable, 0, "text cannot be read", "文字を読めません"},

    // --- warnings: what of a drawing is kept but not understood ----------------------------------------------------
    {kUnknownElements, 1, "elements \"{1}\" are kept but not understood", "要素 \"{1}\" は解釈せずに保持します"},
    {kKeptElements, 1, "{1} elements are kept as they are", "{1} 要素はそのまま保持します"},
    {kKeptTextsOnPaths, 0, "texts on paths are kept as they are", "パス上文字はそのまま保持します"},
    {kUseOfItself, 0, "use elements that refer to themselves are kept as they are",
     "自身を参照する use 要素はそのまま保持します"},
    {kUseOfNothing, 0, "use elements that refer to nothing in the file are kept as they are",
     "参照先がファイルにない use 要素はそのまま保持します"},
    {kSkippedRules, 0, "some style sheet rules are not understood", "解釈できないスタイルシートの規則があります"},
    {kTransformsInCss, 0, "transforms in CSS are kept but not applied", "CSS の transform は適用せずに保持します"},
    {kImageLeftOut, 1, "the image \"{1}\" cannot be shown and is left out", "画像 \"{1}\" は表示できないため省きます"},
    {kMoreWarnings, 1, "and {1} more kinds of things", "ほかに {1} 種類あります"},

    // --- a drawing cannot be written -------------------------------------------------------------------------------
    {kPageNotWritable, 0, "the page cannot be written", "用紙を書き出せません"},
    {kNotReadBack, 1, "what would be saved cannot be read again (line {1}); the file is left as it was",
     "保存する内容を読み直せません ({1} 行目)。ファイルは元のままです"},

    // --- the profile and the plug-in ---------------------------------------------------------------------------------
    {kNotCreatable, 0, "cannot be created", "作成できません"},
    {kNotReadable, 0, "cannot be read", "読み込めません"},
    {kNotWritable, 0, "cannot be written", "書き込めません"},
    {kPluginNotLoaded, 1, "the plug-in cannot be loaded: {1}", "プラグインを読み込めません: {1}"},
    {kNoEntryPoint, 1, "no plug-in: the library has no {1}",
     "プラグインではありません。ライブラリーに {1} がありません"},
    {kStartFailed, 1, "start-up failed with {1}", "起動に失敗しました (コード {1})"},
    {kPluginFailed, 1, "The plug-in has failed: {1}", "プラグインでエラーが発生しました: {1}"},
    {kPluginFailedUnknown, 0, "The plug-in has failed: unknown cause", "プラグインで不明なエラーが発生しました"},
    {kInternal, 1, "{1}", "内部エラーが発生しました: {1}"},

    // --- a script cannot be read -------------------------------------------------------------------------------------
    {kOpenText, 0, "a text is not closed", "文字列が閉じられていません"},
    {kTrailingBackslash, 0, "a backslash stands at the end of the line", "行末に \\ があります"},
    {kUnknownEscape, 1, "unknown escape \\{1}", "\\{1} というエスケープはありません"},
    {kUnknownVerb, 1, "unknown verb \"{1}\"", "\"{1}\" という命令はありません"},
    {kWordCount, 1, "{1} has too few or too many words", "{1} の語数が正しくありません"},
    {kExpectWordCount, 2, "expect {1} takes {2} words", "expect {1} の語数は {2} でなければなりません"},
    {kExpectOnOrOff, 0, "expect menu takes on or off", "expect menu には on か off を指定してください"},
    {kUnknownWord, 2, "{1} does not take \"{2}\"", "{1} に \"{2}\" は使えません"},
    {kNotANumber, 1, "\"{1}\" is no number", "\"{1}\" は数値ではありません"},
    {kNotAWholeNumber, 1, "\"{1}\" is no whole number", "\"{1}\" は整数ではありません"},

    // --- a line of a script cannot be done ---------------------------------------------------------------------------
    {kNoDrawing, 0, "no drawing is open", "図面が開いていません"},
    {kUnknownSetting, 1, "unknown setting {1}", "設定 {1} はありません"},
    {kBadPageSize, 0, "a page has a size above 0", "用紙の大きさは 0 より大きくなければなりません"},
    {kBadZoom, 0, "a zoom is above 0", "表示倍率は 0 より大きくなければなりません"},
    {kNoTool, 1, "no tool is titled \"{1}\"", "\"{1}\" というツールはありません"},
    {kNoToolSelected, 0, "no tool is selected", "ツールが選ばれていません"},
    {kNothingToUndo, 0, "there is nothing to undo", "取り消せる操作がありません"},
    {kNothingToRedo, 0, "there is nothing to redo", "やり直せる操作がありません"},
    {kNoAction, 1, "no action is named \"{1}\"", "\"{1}\" というアクションはありません"},
    {kNoMenuItem, 1, "no menu item is named \"{1}\"", "\"{1}\" というメニュー項目はありません"},
    {kNoFlyoutItem, 1, "the panel's flyout has no item {1}", "パネルメニューに項目 {1} はありません"},
    {kNoPanelControl, 1, "the panel has no control {1}", "パネルにコントロール {1} はありません"},

    // --- an expectation of a script does not hold --------------------------------------------------------------------
    {kExpectedBeep, 0, "expected a beep, found none", "警告音が鳴りませんでした"},
    {kExpectedNoBeep, 1, "expected no beep, found {1}", "警告音が {1} 回鳴りました"},
    {kExpectedOther, 3, "expected {1} {2}, found {3}", "{1} は {2} のはずですが {3} です"},
    {kExpectedAny, 2, "expected {1} {2}, found none", "{1} {2} がありません"},
    {kExpectedFocus, 2, "expected focus on control {1}, found {2}",
     "フォーカスはコントロール {1} のはずですが {2} です"},
    {kExpectedPixels, 2, "expected visible preview pixels {1}, found {2}",
     "プレビューのピクセル数は {1} のはずですが {2} です"},
    {kExpectedMenuState, 2, "expected menu item {1}, found {2}", "メニュー項目は {1} のはずですが {2} です"},
    {kExpectedMenuItem, 1, "expected menu item {1}, found no such item", "{1} のはずのメニュー項目がありません"},
    {kUnexpectedAlert, 1, "unexpected alert {1}", "予期しない警告です: {1}"},
    {kReplyLeft, 0, "the end is reached and a reply has not been asked for", "使われなかった返答が残っています"},

    // --- replies of a script to what the plug-in shows -------------------------------------------------------------
    {kUnexpectedBox, 1, "unexpected {1}", "予期しない確認です: {1}"},
    {kUnexpectedDialog, 1, "unexpected dialog {1}", "予期しないダイアログ {1} が開きました"},
    {kUnexpectedDialogFirst, 2, "unexpected dialog {1}, the next reply is for dialog {2}",
     "予期しないダイアログ {1} が開きました (次の返答はダイアログ {2} 用です)"},
    {kUnexpectedFileDialog, 0, "unexpected file dialog", "予期しないファイルダイアログが開きました"},
    {kDialogClosed, 2, "dialog {1} was closed before control {2}",
     "ダイアログ {1} はコントロール {2} の前に閉じました"},
    {kDialogNotClosed, 1, "dialog {1} was not closed", "ダイアログ {1} が閉じられていません"},
    {kControlMissing, 2, "dialog {1}: control {2} is not there", "ダイアログ {1}: コントロール {2} がありません"},
    {kControlHolds, 4, "dialog {1}: control {2}: expected {3}, found {4}",
     "ダイアログ {1}: コントロール {2} は {3} のはずですが {4} です"},
    {kControlHidden, 2, "dialog {1}: control {2} is hidden", "ダイアログ {1}: コントロール {2} は表示されていません"},
    {kControlDisabled, 2, "dialog {1}: control {2} is disabled", "ダイアログ {1}: コントロール {2} は無効です"},
    {kControlWithoutText, 2, "dialog {1}: control {2} takes no text",
     "ダイアログ {1}: コントロール {2} には入力できません"},
    {kControlWithoutRows, 2, "dialog {1}: control {2} has no rows",
     "ダイアログ {1}: コントロール {2} に行はありません"},
    {kControlNotOn, 2, "dialog {1}: control {2} cannot be switched on",
     "ダイアログ {1}: コントロール {2} はオンにできません"},
    {kControlNotOff, 2, "dialog {1}: control {2} cannot be switched off",
     "ダイアログ {1}: コントロール {2} はオフにできません"},
    {kControlNotPressable, 2, "dialog {1}: control {2} cannot be pressed",
     "ダイアログ {1}: コントロール {2} は押せません"},
    {kControlRow, 3, "dialog {1}: control {2} has no row {3}",
     "ダイアログ {1}: コントロール {2} に行 {3} はありません"},
    {kBlockFreed, 0, "a block was freed that is not allocated", "確保されていないメモリーが解放されました"},

    // --- the host's own editing --------------------------------------------------------------------------------------
    {kNoArt, 1, "no art has the id \"{1}\"", "id が \"{1}\" のオブジェクトはありません"},
    {kArtNotEditable, 1, "\"{1}\" cannot be changed", "\"{1}\" は変更できません"},
    {kIdTaken, 1, "the id \"{1}\" is taken", "id \"{1}\" はすでに使われています"},
    {kNothingToPaste, 0, "nothing has been taken for pasting", "貼り付けるものがありません"},
    {kNotPasteable, 0, "what has been taken cannot be put here", "ここには貼り付けられません"},
    {kNoLayer, 1, "no layer is titled \"{1}\"", "\"{1}\" というレイヤーはありません"},
    {kLayerNotEditable, 1, "the layer \"{1}\" cannot be changed", "レイヤー \"{1}\" は変更できません"},

    // --- the command line --------------------------------------------------------------------------------------------
    {kNoCommand, 0, "A subcommand is required", "コマンドを指定してください"},
    {kOptionMissing, 1, "{1} is required", "{1} を指定してください"},
    {kOptionWithoutValue, 1, "1 required {1} missing", "値 ({1}) を指定してください"},
    {kOptionRepeated, 1, "At Most 1 required but received {1}", "1 回だけ指定できます ({1} 回あります)"},
    {kUnexpectedArgument, 1, "The following argument was not expected: {1}", "余分な引数です: {1}"},
    {kUnexpectedArguments, 1, "The following arguments were not expected: {1}", "余分な引数です: {1}"},
    {kNotConvertible, 2, "Could not convert: {1} = {2}", "値が正しくありません: {1} = {2}"},
    {kNotOneOf, 2, "{1} not in {2}", "{1} は {2} のどれでもありません"},
    {kNotAboveZero, 0, "a number above 0", "0 より大きい数値を指定してください"},
    {kNotInRange, 3, "Value {1} not in range {2} to {3}", "{1} は {2} から {3} までの数値ではありません"},
    {kOptionRefused, 1, "{1}", "コマンドの指定が正しくありません ({1})"},
    {kOutputOrFolder, 0, "-o for one drawing, --out-dir for several",
     "図面が 1 つなら -o、複数なら --out-dir を指定してください"},
    {kOutputForSeveral, 0, "several drawings need --out-dir", "図面が複数なら --out-dir を指定してください"},
    {kSameName, 0, "two drawings of this name", "同じ名前の図面が 2 つあります"},
    {kNotFourNumbers, 0, "four numbers, LEFT,BOTTOM,RIGHT,TOP", "4 つの数値 LEFT,BOTTOM,RIGHT,TOP を指定してください"},
    {kOnePoint, 0, "the two corners are one point", "2 つの角が同じ点です"},
    {kNotKeyAndText, 0, "KEY=TEXT", "KEY=TEXT の形で指定してください"},
    {kUnknownKey, 0, "unknown key", "このキーはありません"},
    {kNoScheduleTools, 0, "the profile's settings leave the Schedule tools out (oldmode)",
     "プロファイルの設定 (oldmode) により図面枠ツールがありません"},
    {kLayerClosed, 0, "the current layer is hidden or locked", "現在のレイヤーが非表示かロックされています"},
    {kNoDimension, 1, "no dimension has the id {1}", "id が {1} の寸法はありません"},
    {kPointFree, 1, "the point \"{1}\" follows no art", "点「{1}」はどの図形にも追従しません"},
    {kPointDeleted, 1, "the point \"{1}\" cannot follow: its art is gone",
     "点「{1}」は追従できません: 図形がありません"},
    {kPointUnpainted, 1, "the point \"{1}\" cannot follow: its art is hidden, a guide, or has neither fill nor stroke",
     "点「{1}」は追従できません: 図形に塗りも線もないか、隠れているか、ガイドです"},
    {kPointLayer, 1, "the point \"{1}\" cannot follow: its art is on a hidden or locked layer",
     "点「{1}」は追従できません: 図形が非表示またはロックされたレイヤーにあります"},
    {kPointSegment, 1, "the point \"{1}\" cannot follow: its segment is gone",
     "点「{1}」は追従できません: セグメントがありません"},
    {kPointCopy, 1, "the point \"{1}\" cannot follow: a copy of its art is nearer and has no such segment",
     "点「{1}」は追従できません: より近い複製にそのセグメントがありません"},
    {kPointNoCrossing, 1, "the point \"{1}\" cannot follow: its segments no longer cross",
     "点「{1}」は追従できません: セグメントがもう交わりません"},
    {kPointNoArc, 1, "the point \"{1}\" cannot follow: its segment is no arc any more",
     "点「{1}」は追従できません: セグメントがもう円弧ではありません"},
    {kNoSnapReport, 0, "the plug-in does not tell what it snaps to", "プラグインがスナップの結果を返しません"},
    {kNoPainter, 1, "{1}, which paints, is neither beside quorvel nor on the path",
     "描画プログラム {1} が quorvel と同じ場所にも PATH にもありません"},
    {kNotRunnable, 0, "cannot be run", "実行できません"},
    {kNoPipe, 0, "no pipe for its process", "プロセス用のパイプを作成できません"},
    {kNoProcess, 0, "no process for it", "プロセスを作成できません"},
    {kProcessKilled, 1, "its process ended on signal {1}", "プロセスがシグナル {1} で終了しました"},

    // --- exporting and the window ------------------------------------------------------------------------------------
    {kExportOntoDrawing, 0, "is the drawing itself", "図面そのものには書き出せません"},
    {kNoDrawingNamed, 0, "no drawing is named", "図面を指定してください"},
    {kNumberNeeded, 0, "a number above 0 is needed", "0 より大きい数値を指定してください"},
    {kWholeNumberNeeded, 0, "a whole number is needed", "整数を指定してください"},
    {kLanguageNeeded, 0, "ja, en or ko", "ja、en、ko のどれかを指定してください"},
    {kPageEmpty, 0, "the page is empty", "用紙に大きさがありません"},
    {kPageTooLargeForPdf, 0, "the page is larger than PDF allows, 200 inches",
     "用紙が PDF の上限 (200 インチ) を超えています"},
    {kTooManyPixels, 2, "{1} by {2} pixels are too many; take fewer dots per inch",
     "{1} × {2} ピクセルは多すぎます。解像度を下げてください"},
    {kNoPictureMemory, 0, "there is no memory for the picture", "画像のためのメモリーが足りません"},
    {kExportEnding, 0, "the name must end in .pdf or .png", "ファイル名は .pdf か .png で終わらなければなりません"},
};

constexpr bool isInOrderOfCodes() {
    for (std::size_t i = 0; i < std::size(kTable); ++i)
        if (kTable[i].code != static_cast<ErrorCode>(i)) return false;
    return std::size(kTable) == static_cast<std::size_t>(kEnd);
}
static_assert(isInOrderOfCodes(), "one row for each code, in the order of ErrorCode");

}  // namespace

std::span<const SentenceRow> sentenceTable() { return kTable; }

}  // namespace quorvel::app
