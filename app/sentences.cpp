// Puts an error's arguments and place into its sentence.
#include "app/sentences.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

namespace quorvel::app {

namespace {

struct SystemRow {
    int number;
    std::string_view japanese;
};

constexpr SystemRow kSystemRows[] = {
    {EPERM, "許可されていない操作です"},
    {ENOENT, "ファイルまたはフォルダーがありません"},
    {EIO, "入出力エラーです"},
    {ENXIO, "デバイスがありません"},
    {EAGAIN, "資源が一時的に足りません"},
    {ENOMEM, "メモリーが足りません"},
    {EACCES, "アクセスが許可されていません"},
    {EBUSY, "使用中です"},
    {EEXIST, "すでにあります"},
    {ENOTDIR, "フォルダーではありません"},
    {EISDIR, "フォルダーです"},
    {EINVAL, "値が正しくありません"},
    {ENFILE, "開いているファイルが多すぎます"},
    {EMFILE, "開いているファイルが多すぎます"},
    {ETXTBSY, "実行中のファイルです"},
    {EFBIG, "ファイルが大きすぎます"},
    {ENOSPC, "ディスクの空き容量がありません"},
    {EROFS, "読み取り専用のディスクです"},
    {ENAMETOOLONG, "ファイル名が長すぎます"},
    {ELOOP, "シンボリックリンクの段数が多すぎます"},
    {EBADF, "閉じています"},
    {EPIPE, "読み手がパイプを閉じました"},
    {ESTALE, "ファイルの参照が無効になりました"},
    {EDQUOT, "ディスクの割り当てを使い切りました"},
};

// The system's own word for it where the table has none; empty when the system does not know it either.
std::string systemText(const std::string& digits, Language language) {
    int number = 0;
    const char* end = digits.data() + digits.size();
    if (std::from_chars(digits.data(), end, number).ptr != end) return {};
    const auto* row = std::ranges::find(kSystemRows, number, &SystemRow::number);
    if (language == Language::japanese && row != std::end(kSystemRows)) return std::string(row->japanese);
    // Not strerror, which follows the locale.
    if (const char* english = strerrordesc_np(number); english != nullptr) return english;
    return {};
}

std::string filled(std::string_view pattern, const std::vector<std::string>& arguments) {
    std::string text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const bool isPlace = pattern[at] == '{' && at + 2 < pattern.size() && pattern[at + 2] == '}';
        if (!isPlace) {
            text += pattern[at];
            continue;
        }
        const auto index = static_cast<std::size_t>(pattern[at + 1] - '1');
        if (index < arguments.size()) text += arguments[index];
        at += 2;
    }
    return text;
}

// Whether the first argument is an errno, which the sentence has in words.
bool isOfSystem(ErrorCode code) { return code == ErrorCode::kOutputLost || code == ErrorCode::kNoBackup; }

std::string textOf(const Error& error, Language language) {
    if (error.code == ErrorCode::kSystem && !error.arguments.empty())
        if (const std::string text = systemText(error.arguments[0], language); !text.empty()) return text;
    const SentenceRow& row = sentenceTable()[static_cast<std::size_t>(error.code)];
    std::vector<std::string> arguments = error.arguments;
    if (isOfSystem(error.code) && !arguments.empty())
        arguments[0] = textOf(makeError(ErrorCode::kSystem, {arguments[0]}), language);
    return filled(language == Language::english ? row.english : row.japanese, arguments);
}

}  // namespace

std::string sentence(const Error& error, Language language) {
    std::string place;
    if (!error.file.empty()) place += error.file + ": ";
    if (error.line > 0) {
        const std::string line = std::to_string(error.line);
        place += language == Language::english ? "line " + line + ": " : line + " 行目: ";
    }
    if (!error.element.empty()) {
        place += error.element;
        if (!error.elementId.empty()) place += " \"" + error.elementId + "\"";
        place += ": ";
    }
    return place + textOf(error, language);
}

std::vector<std::string> warningSentences(const std::vector<Error>& warnings, Language language) {
    // A file of nothing but unknown names is not worth a line for each.
    constexpr std::size_t kMostWarnings = 20;
    std::vector<std::string> sentences;
    for (Error warning : warnings) {
        warning.file.clear();
        sentences.push_back(sentence(warning, language));
    }
    std::ranges::sort(sentences);
    if (sentences.size() <= kMostWarnings) return sentences;
    const std::string more = std::to_string(sentences.size() - kMostWarnings);
    sentences.resize(kMostWarnings);
    sentences.push_back(sentence(makeError(ErrorCode::kMoreWarnings, {more}), language));
    return sentences;
}

}  // namespace quorvel::app
