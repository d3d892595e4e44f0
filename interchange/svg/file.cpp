// Drawings on disk.
#include "files/file_reader.h"
#include "files/file_writer.h"
#include "interchange/svg/svg.h"
#include "svg/markup/xml_file.h"

namespace quorvel::interchange {

Result<SvgDrawing> readSvgFile(const std::string& path) {
    Result<std::string> text = files::readFile(path, svg::kLargestFile);
    if (!text) return std::move(text.error()).inFile(path);
    Result<SvgDrawing> drawing = readSvg(std::move(*text));
    if (!drawing) return std::move(drawing.error()).inFile(path);
    for (Error& warning : drawing->warnings) warning.file = path;
    return drawing;
}

Status saveSvgFile(const doc::Document& document, const std::string& path, std::string_view rulerUnit) {
    const std::string text = writeSvg(document, rulerUnit);
    if (text.empty()) return makeError(ErrorCode::kPageNotWritable).inFile(path);
    const Status written = files::writeFile(path, text);
    return written ? written : Error(written.error()).inFile(path);
}

}  // namespace quorvel::interchange
