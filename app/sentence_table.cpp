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
    {kMoreWarnings, 1, "and {1} more kinds of things", "ほかに {1} 種類あります"},

    // --- a drawing cannot be written -------------------------------------------------------------------------------
    {kPageNotWritable, 0, "the page cannot be written", "用紙を書き出せません"},
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
