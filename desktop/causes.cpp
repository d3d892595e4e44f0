// A table of sentences, of which each is looked for as a whole behind the places that stand before it.
#include "desktop/causes.h"

#include <QRegularExpression>

namespace quorvel::desktop {

namespace {

struct Row {
    const char *english, *japanese;  // %1 and %2 take what the parentheses hold
};
constexpr Row kRows[] = {
    // the system's
    {"No such file or directory", "ファイルまたはフォルダーがありません"},
    {"Permission denied", "アクセスが許可されていません"},
    {"Is a directory", "フォルダーです"},
    {"Not a directory", "フォルダーではありません"},
    {"No space left on device", "ディスクの空き容量がありません"},
    {"Read-only file system", "読み取り専用のディスクです"},
    {"File name too long", "ファイル名が長すぎます"},
    // reading
    {"the file is larger than (\\d+) MB", "ファイルが %1 MB を超えています"},
    {"not an XML file in UTF-8", "UTF-8 の XML ファイルではありません"},
    {"the file's encoding is (\".*\"); only UTF-8 is read", "文字コードが %1 です。UTF-8 だけが読めます"},
    {"a byte that is no UTF-8", "UTF-8 でないバイトがあります"},
    {"not well-formed XML: (.*)", "正しい XML ではありません (%1)"},
    {"the entities expand to too much", "実体の展開が大きすぎます"},
    {"the style sheets ask for too much work", "スタイルシートの処理が多すぎます"},
    {"too many copies made by use elements", "use 要素による複製が多すぎます"},
    {"nested too deeply", "入れ子が深すぎます"},
    {"bad transform", "transform が正しくありません"},
    {"transform out of range", "transform が範囲を超えています"},
    {"viewBox out of range", "viewBox が範囲を超えています"},
    {"coordinate out of range(?: in (?:path data|points))?", "座標が範囲を超えています"},
    {"bad length in (.*)", "%1 の長さが正しくありません"},
    {"bad number in points at character (\\d+)", "points の %1 文字目の数値が正しくありません"},
    {"text cannot be read", "文字を読めません"},
    // what is kept but not understood
    {"elements (\".*\") are kept but not understood", "要素 %1 は解釈せずに保持します"},
    {"use elements that refer to themselves are kept as they are", "自身を参照する use 要素はそのまま保持します"},
    {"use elements that refer to nothing in the file are kept as they are",
     "参照先がファイルにない use 要素はそのまま保持します"},
    {"texts on paths are kept as they are", "パス上文字はそのまま保持します"},
    {"(\\w+) elements are kept as they are", "%1 要素はそのまま保持します"},
    {"some style sheet rules are not understood", "解釈できないスタイルシートの規則があります"},
    // writing
    {"the page cannot be written", "用紙を書き出せません"},
    {"the page is empty", "用紙に大きさがありません"},
    {"(\\d+) by (\\d+) pixels are too many; take fewer dots per inch",
     "%1 × %2 ピクセルは多すぎます。解像度を下げてください"},
    {"there is no memory for the picture", "画像のためのメモリーが足りません"},
    {"the name must end in .pdf or .png", "ファイル名は .pdf か .png で終わらなければなりません"},
};

}  // namespace

QString japaneseCause(const QString& english) {
    // "line 3: path "plate": " stands before what is wrong there.
    static const QRegularExpression kPlace(QStringLiteral("^line (\\d+): ((?:[\\w:]+(?: \"[^\"]*\")?: )?)"));
    const QRegularExpressionMatch place = kPlace.match(english);
    const auto said = [](const QString& sentence) {
        for (const Row& row : kRows) {
            const QRegularExpression whole(QRegularExpression::anchoredPattern(QLatin1String(row.english)));
            const QRegularExpressionMatch match = whole.match(sentence);
            if (!match.hasMatch()) continue;
            QString text = QString::fromUtf8(row.japanese);
            for (int i = 1; i <= match.lastCapturedIndex(); ++i)
                text.replace(QStringLiteral("%%1").arg(i), match.captured(i));
            return text;
        }
        return sentence;
    };
    if (!place.hasMatch()) return said(english);
    const QString behind = english.mid(place.capturedEnd(1) + 2), tail = english.mid(place.capturedEnd());
    const QString where = QString::fromUtf8("%1 行目: ").arg(place.captured(1));
    // What begins like an element's name may be the sentence itself.
    if (const QString whole = said(behind); whole != behind) return where + whole;
    return where + place.captured(2) + said(tail);
}

}  // namespace quorvel::desktop
