#include "interchange/svg/text_form.h"

#include <iconv.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <string_view>

#include "svg/markup/xml_file.h"
#include "svg/values/byte_text.h"

namespace quorvel::interchange {
namespace {

// --- compression (RFC 1952) ----------------------------------------------------------------------------------------

constexpr std::string_view kGzipMark = "\x1F\x8B";
constexpr int kGzipWindow = 15 + 16;  // the largest window, with gzip's header
constexpr std::size_t kBlock = std::size_t{64} << 10;

Result<std::string> decompress(std::string_view bytes) {
    z_stream stream{};
    if (inflateInit2(&stream, kGzipWindow) != Z_OK) return makeError(ErrorCode::kXmlNoMemory);
    const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, inflateEnd);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string text;
    std::array<char, kBlock> block;
    for (int status = Z_OK; status != Z_STREAM_END;) {
        stream.next_out = reinterpret_cast<Bytef*>(block.data());
        stream.avail_out = kBlock;
        status = inflate(&stream, Z_NO_FLUSH);
        text.append(block.data(), kBlock - stream.avail_out);
        if (text.size() > svg::kLargestFile) return svg::tooLargeFile();
        const bool isCutOff = status == Z_OK && stream.avail_in == 0 && stream.avail_out != 0;
        if ((status != Z_OK && status != Z_STREAM_END) || isCutOff) return makeError(ErrorCode::kBadCompression);
    }
    return text;
}

// Without a name or a time, so that the same text gives the same bytes.
Result<std::string> compress(std::string_view text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return makeError(ErrorCode::kXmlNoMemory);
    const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, deflateEnd);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    std::string bytes(deflateBound(&stream, stream.avail_in), '\0');
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END) return makeError(ErrorCode::kXmlNoMemory);
    bytes.resize(stream.total_out);
    return bytes;
}

// --- encodings -----------------------------------------------------------------------------------------------------

class Converter {
  public:
    Converter(const std::string& to, const std::string& from) : handle_(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (isKnown()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool isKnown() const { return handle_ != reinterpret_cast<iconv_t>(-1); }
    // Appends what can be converted; gives the rest, which begins with what cannot.
    std::string_view convert(std::string_view text, std::string* out) {
        char* at = const_cast<char*>(text.data());
        std::size_t left = text.size();
        std::array<char, 4096> block;
        while (left > 0) {
            char* to = block.data();
            std::size_t room = block.size();
            const std::size_t done = iconv(handle_, &at, &left, &to, &room);
            out->append(block.data(), block.size() - room);
            if (done == static_cast<std::size_t>(-1) && errno != E2BIG) break;
        }
        return {at, left};
    }

  private:
    iconv_t handle_;
};

// Names by which files call what the converter knows under another; shift_jis is what the web means by it.
std::string converterName(const std::string& declared) {
    static constexpr std::pair<std::string_view, std::string_view> kNames[] = {
        {"shift_jis", "CP932"},   {"shift-jis", "CP932"}, {"sjis", "CP932"},      {"x-sjis", "CP932"},
        {"windows-31j", "CP932"}, {"ms_kanji", "CP932"},  {"utf-16", "UTF-16LE"}, {"iso-8859-1", "ISO-8859-1"}};
    for (const auto& [name, known] : kNames)
        if (declared == name) return std::string(known);
    return declared;
}

constexpr std::string_view kUtf16Little = "\xFF\xFE", kUtf16Big = "\xFE\xFF";

TextForm formOf(std::string_view bytes) {
    if (bytes.starts_with(kUtf16Little)) return {"UTF-16LE", true};
    if (bytes.starts_with(kUtf16Big)) return {"UTF-16BE", true};
    if (bytes.starts_with(std::string_view("<\0", 2))) return {"UTF-16LE"};
    if (bytes.starts_with(std::string_view("\0<", 2))) return {"UTF-16BE"};
    const std::string declared = svg::declaredEncoding(bytes);
    const bool isUtf8 = declared.empty() || declared == "utf-8" || declared == "utf8" || declared == "us-ascii" ||
                        declared == "utf-16";  // a declaration that was read is none in UTF-16
    return {isUtf8 ? "" : converterName(declared)};
}

std::string_view markOf(const TextForm& form) {
    return !form.hasMark ? std::string_view() : form.encoding == "UTF-16BE" ? kUtf16Big : kUtf16Little;
}

// Decodes the first character of UTF-8, which is valid.
std::string characterReference(std::string_view text, std::size_t* length) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    *length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    unsigned code = *length == 1 ? lead : lead & (0x7Fu >> *length);
    for (std::size_t i = 1; i < *length; ++i) code = code << 6 | (byte(i) & 0x3F);
    return "&#" + std::to_string(code) + ";";
}

std::optional<std::string> convertBack(std::string_view text, const TextForm& form) {
    Converter converter(form.encoding, "UTF-8");
    if (!converter.isKnown()) return std::nullopt;
    std::string bytes(markOf(form));
    for (;;) {
        const std::string_view rest = converter.convert(text, &bytes);
        if (rest.empty()) return bytes;
        std::size_t length = 0;
        const std::string reference = characterReference(rest, &length);
        if (length > rest.size() || !converter.convert(reference, &bytes).empty()) return std::nullopt;
        text = rest.substr(length);
    }
}

Result<std::string> convertToUtf8(std::string_view bytes, const TextForm& form) {
    const Error foreign = makeError(ErrorCode::kForeignEncoding, {svg::encodeBytes(form.encoding)});
    Converter converter("UTF-8", form.encoding);
    std::string text;
    if (!converter.isKnown()) return foreign;
    const bool isWhole = converter.convert(bytes.substr(markOf(form).size()), &text).empty();
    if (!isWhole || convertBack(text, form) != bytes) return foreign;
    return text;
}

}  // namespace

Result<FileText> decodeText(std::string&& bytes) {
    FileText file;
    if (bytes.starts_with(kGzipMark)) {
        Result<std::string> plain = decompress(bytes);
        if (!plain) return plain.error();
        bytes = std::move(*plain);
        file.form.isCompressed = true;
    }
    const bool isCompressed = file.form.isCompressed;
    file.form = formOf(bytes);
    file.form.isCompressed = isCompressed;
    if (file.form.encoding.empty()) {
        file.text = std::move(bytes);
        return file;
    }
    Result<std::string> text = convertToUtf8(bytes, file.form);
    if (!text) return text.error();
    file.text = std::move(*text);
    return file;
}

Result<std::string> encodeText(std::string text, const TextForm& form) {
    if (!form.encoding.empty()) {
        std::optional<std::string> converted = convertBack(text, form);
        if (!converted) return makeError(ErrorCode::kForeignEncoding, {form.encoding});
        text = std::move(*converted);
    }
    if (form.isCompressed) return compress(text);
    return text;
}

}  // namespace quorvel::interchange
