// Short words for tests of SVG files: opening a text, finding art, comparing whole documents.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "interchange/svg/svg.h"
#include "tests/support/errors.h"

namespace quorvel::interchange {

inline std::unique_ptr<doc::Document> open(const std::string& text) {
    Result<SvgDrawing> result = readSvg(text);
    if (result) return std::move(result->document);
    ADD_FAILURE() << result.error();
    return nullptr;
}

// A page of 100 x 200 points with one user unit to the point, so that (x, y) lies at (x, 200 - y).
inline std::string page(const std::string& content, const std::string& attributes = "") {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100pt\" height=\"200pt\" viewBox=\"0 0 100 200\"" +
           attributes + ">\n" + content + "\n</svg>\n";
}

// The art with this id; a failure and the null art's name when there is none.
inline const doc::Art& art(const doc::Document& document, const std::string& id) {
    static const doc::Art kNone;
    const doc::Art* found = document.find(document.findByName(id));
    EXPECT_NE(found, nullptr) << id;
    return found ? *found : kNone;
}

inline const std::vector<PathSegment>& segments(const doc::Document& document, const std::string& id) {
    static const std::vector<PathSegment> kNone;
    const doc::Art& found = art(document, id);
    EXPECT_TRUE(found.path) << id;
    return found.path ? found.path->segments : kNone;
}

inline const doc::Layer& topLayer(const doc::Document& document) { return *document.layer(document.layers().front()); }

inline void expectPoint(RealPoint point, double h, double v, double tolerance = 1e-4) {
    EXPECT_NEAR(point.h, h, tolerance);
    EXPECT_NEAR(point.v, v, tolerance);
}

inline Error systemError(int number, const std::string& file) {
    Error error = makeError(ErrorCode::kSystem, {std::to_string(number)});
    error.file = file;
    return error;
}

// Expects two documents to hold the same, to the last bit of every number.
void expectSame(const doc::Document& a, const doc::Document& b);

}  // namespace quorvel::interchange
