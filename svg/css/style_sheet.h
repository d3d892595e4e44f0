// The part of CSS that drawings use: declaration lists, style sheets with simple and combined-simple selectors (type,
// .class, #id and their compounds and lists). What is not understood is passed over.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorvel::svg {

// Views into the text that was parsed.
struct CssDeclaration {
    std::string_view property, value;
    bool important = false;
};

// Appends the declarations of a style attribute or of a rule's block.
void parseDeclarations(std::string_view block, std::vector<CssDeclaration>* declarations);

class StyleSheet {
  public:
    StyleSheet();
    // Adds the rules of a style element behind the earlier ones.
    void add(std::string text);
    bool empty() const { return rules_.empty(); }
    bool skippedSome() const { return skippedSome_; }  // at-rules or selectors that are not understood
    // How many elements will ask: a large drawing may cost more work than a small one.
    void expect(std::size_t elements);
    // Appends what holds for an element, in the order in which it is applied (weakest first). False when the sheets ask
    // for more work than a drawing is worth.
    [[nodiscard]] bool match(std::string_view type, std::string_view id, std::string_view classes,
                             std::vector<CssDeclaration>* declarations) const;

  private:
    struct Rule {
        std::string_view type, id;
        std::vector<std::string_view> classes;
        std::int64_t specificity = 0;
        std::size_t order = 0;
        std::size_t firstDeclaration = 0, declarationCount = 0;
    };
    // One element's question.
    struct Asking {
        std::string_view type, id;
        std::vector<std::string_view> classes;  // in order, each once
        std::vector<const Rule*> found;
        std::size_t workLeft = 0;
        bool spend(std::size_t work);
    };
    void addRules(std::string_view text);
    void addSelector(std::string_view selector, std::size_t first, std::size_t count);
    // False when the work is more than is left.
    bool addFitting(const std::string& key, Asking* asking) const;
    bool addFitting(Asking* asking) const;

    std::vector<std::unique_ptr<std::string>> texts_;
    std::vector<CssDeclaration> declarations_;
    std::vector<Rule> rules_;
    // Each rule by the rarest name that it asks for, so that an element looks at few: "#id", ".class", "type" or "*".
    std::unordered_map<std::string, std::vector<std::size_t>> index_;
    bool skippedSome_ = false;
    mutable std::size_t workLeft_;
};

}  // namespace quorvel::svg
