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
    // writing
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
