// What `info` says of a drawing, and that a dimension made at the scale it tells shows the maker's value.
#include <cstring>

#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

class Info : public ProgramRun {
  protected:
    void writeDrawing(const std::string& sides, const std::string& content = "") {
        write("a.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" " + sides + ">" + content + "</svg>");
    }
};

// The units are worked out by hand: the page's side in mm over that of the viewBox.
TEST_F(Info, SaysTheUserUnitAndThePlainScale) {
    struct Row {
        const char* sides;
        double width, height;
        const char *name, *scale;  // as JSON
    };
    constexpr const char* kNone = "(absent)";
    for (const Row& row : {
             Row{"width='200' height='100'", 25.4 / 96, 25.4 / 96, "\"px\"", kNone},
             {"width='210mm' height='297mm' viewBox='0 0 210 297'", 1, 1, "\"mm\"", kNone},
             {"width='8.5in' height='11in' viewBox='0 0 8.5 11'", 25.4, 25.4, "\"in\"", kNone},
             {"width='210mm' height='297mm' viewBox='0 0 744.09448 1052.3622'", 0.2822222, 0.2822222, "\"px90\"",
              kNone},
             {"width='210mm' height='297mm' viewBox='0 0 10500 14850'", 0.02, 0.02, kNone, "\"1/50\""},
             {"width='210mm' height='297mm' viewBox='-9 5 21000 29700'", 0.01, 0.01, kNone, "\"1/100\""},
             {"width='210mm' height='297mm' viewBox='0 0 105 148.5'", 2, 2, kNone, "\"2/1\""},
             {"width='100mm' height='100mm' viewBox='0 0 250 250'", 0.4, 0.4, kNone, "\"1/2.5\""},
             {"width='100mm' height='100mm' viewBox='0 0 333 333'", 0.3003003, 0.3003003, kNone, kNone},
             {"width='100mm' height='100mm' viewBox='0 0 100 50' preserveAspectRatio='none'", 1, 2, kNone, kNone},
         }) {
        writeDrawing(row.sides);
        ASSERT_EQ(runProgram("info a.svg --json"), 0) << row.sides << err_;
        EXPECT_NEAR(std::stod(printed("/drawings/0/userUnit/width")), row.width, 1e-6) << row.sides;
        EXPECT_NEAR(std::stod(printed("/drawings/0/userUnit/height")), row.height, 1e-6) << row.sides;
        EXPECT_EQ(printed("/drawings/0/userUnit/name"), row.name) << row.sides;
        EXPECT_EQ(printed("/drawings/0/scale"), row.scale) << row.sides;
    }
}

TEST_F(Info, CountsWhatIsInTheDrawingInBothLanguages) {
    writeDrawing("width='20mm' height='10mm' viewBox='0 0 1000 500'",
                 "<filter id='f'/><path d='M 1 1 H 9' filter='url(#f)'/><g><path d='M 1 1 H 9 Z M 2 2 H 3 Z'/>"
                 "<text font-family=\"'No Such', serif\">t<tspan font-family='Nowhere'>u</tspan></text>"
                 "<text font-family='serif, Nobody'>v</text></g><image/>");
    EXPECT_EQ(runProgram("info a.svg absent.svg"), 2);
    EXPECT_EQ(out_,
              "a.svg:\n    page: 20 x 10 mm\n    user unit: 0.02 mm\n    scale, where a user unit is 1 mm: 1 : 50\n"
              "    paths: 1\n    compound paths: 1\n    texts: 2\n    dimensions: 0\n    comments and balloons: 0\n"
              "    drawing frames: 0\n    elements with filters: 1\n    font missing: No Such\n"
              "    font missing: Nowhere\n    warning: image elements are kept as they are\n");
    EXPECT_EQ(err_, "absent.svg: No such file or directory\n");
    EXPECT_EQ(runProgram("info a.svg --language ja"), 0);
    EXPECT_NE(out_.find("ユーザー単位: 0.02 mm\n"), std::string::npos) << out_;
}

TEST_F(Info, AFirstDimensionAtTheScaleToldShowsTheMakersValue) {
    struct Row {
        const char *sides, *path;
        std::string settings;
        double unit;  // points
        const char* shown;
    };
    const std::string half = "set flScaleText \"1:50\"\n", inches = "set flScaleText 1\nset flArUnit 3\n";
    for (const Row& row : {
             Row{"width='210mm' height='297mm' viewBox='0 0 10500 14850'", "M 1000,10000 H 5000", "set flScale 1/50\n",
                 0.02 * 72 / 25.4, "4000"},
             {"width='210mm' height='297mm' viewBox='0 0 10500 14850'", "M 1000,10000 H 5000", half, 0.02 * 72 / 25.4,
              "4000"},
             {"width='210mm' height='297mm' viewBox='0 0 210 297'", "M 20,200 H 100", "set flScale 1\n", 72 / 25.4,
              "80"},
             {"width='8.5in' height='11in' viewBox='0 0 8.5 11'", "M 1,7 H 3", inches, 72, "2"},
         }) {
        writeDrawing(row.sides, "<path id='p' stroke='#000' d='" + std::string(row.path) + "'/>");
        double left = 0, down = 0, right = 0, height = 0;
        ASSERT_EQ(std::sscanf(row.path, "M %lf,%lf H %lf", &left, &down, &right), 3);
        ASSERT_EQ(std::sscanf(std::strstr(row.sides, "viewBox='0 0 ") + 13, "%*f %lf", &height), 1);
        const auto at = [&](double x, double above) {
            return std::to_string(x * row.unit) + " " + std::to_string((height - down) * row.unit + above) + "\n";
        };
        write("s.script", "set language ENGLISH\nopen a.svg\n" + row.settings +
                              "tool \"Straight Dimension Tool\"\ntrack " + at(left, 0) + "down\ndrag " + at(right, 0) +
                              "up\ntrack " + at((left + right) / 2, 30) + "down\nsave b.svg\n");
        ASSERT_EQ(runProgram("run s.script"), 0) << err_;
        ASSERT_EQ(runProgram("list b.svg --json"), 0);
        EXPECT_EQ(printed("/0/texts/0"), '"' + std::string(row.shown) + '"') << row.sides << out_;
    }
    for (const auto& [key, value] :
         {std::pair{"flScaleText", "drawing"}, {"flScale", "1/0"}, {"flScale", "-1/50"}, {"flArLenScaleText", "x/2"}}) {
        write("s.script", "new 9 9\nset " + std::string(key) + " " + value + "\n");
        EXPECT_EQ(runProgram("run s.script"), 1) << value;
        EXPECT_EQ(err_, "s.script:2: " + std::string(value) + " not in {A/B,A:B,NUMBER}\n");
    }
}

}  // namespace
}  // namespace quorvel::tests
