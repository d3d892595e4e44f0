// Drawings on disk.
#include <filesystem>

#include "files/file_reader.h"
#include "files/file_writer.h"
#include "interchange/svg/source.h"
#include "interchange/svg/svg.h"
#include "svg/markup/xml_file.h"

namespace quorvel::interchange {
namespace {

// A text of up to this size is read as a drawing, a larger one as markup: reading back must stay cheaper than opening.
constexpr std::size_t kReadBackWhole = std::size_t{1} << 20;

Status readBack(std::string bytes) {
    Error error;
    if (bytes.size() > kReadBackWhole) {
        Result<FileText> decoded = decodeText(std::move(bytes));
        const Status checked = decoded ? svg::checkMarkup(&decoded->text) : Status(decoded.error());
        if (checked) return {};
        error = checked.error();
    } else {
        const Result<SvgDrawing> read = readSvg(std::move(bytes));
        if (read) return {};
        error = read.error();
    }
    return makeError(ErrorCode::kNotReadBack, {std::to_string(error.line)});
}

// Of the file at the path, for a drawing that was read in a form.
TextForm formAt(const std::string& path, TextForm form) {
    const std::string extension = std::filesystem::path(path).extension().string();
    if (extension == ".svgz" || extension == ".svg") form.isCompressed = extension == ".svgz";
    return form;
}

Status save(const doc::Document& document, const std::string& path, std::string_view rulerUnit,
            const SaveOptions& options) {
    std::string text = writeSvg(document, rulerUnit);
    if (text.empty()) return makeError(ErrorCode::kPageNotWritable);
    const SvgSource* source = svgSource(document);
    const bool isChanged = source == nullptr || *source->text != text;
    const TextForm form = formAt(path, source == nullptr ? TextForm{} : source->form);
    Result<std::string> bytes = encodeText(std::move(text), form);
    if (!bytes) return bytes.error();
    Result<files::FileWriter> writer = files::FileWriter::open(path, {options.replacesReadOnly});
    if (!writer) return writer.error();
    // A stream has no old content that could be kept: it gets nothing that cannot be read.
    if (isChanged && writer->isStream())
        if (Status read = readBack(*bytes); !read) return read;
    if (Status written = writer->write(*bytes); !written) return written;
    if (isChanged && !writer->isStream())
        if (Status read = readBack(std::move(*bytes)); !read) return read;
    return writer->commit();
}

}  // namespace

Result<SvgDrawing> readSvgFile(const std::string& path) {
    Result<std::string> text = files::readInput(path, svg::kLargestFile);
    if (!text) return std::move(text.error()).inFile(path);
    Result<SvgDrawing> drawing = readSvg(std::move(*text));
    if (!drawing) return std::move(drawing.error()).inFile(path);
    for (Error& warning : drawing->warnings) warning.file = path;
    return drawing;
}

Status saveSvgFile(const doc::Document& document, const std::string& path, std::string_view rulerUnit,
                   const SaveOptions& options) {
    const Status saved = save(document, path, rulerUnit, options);
    return saved ? saved : Error(saved.error()).inFile(path);
}

}  // namespace quorvel::interchange
