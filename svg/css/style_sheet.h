// Style sheets: rules for elements, in the order in which they apply. What is not understood is passed over.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "svg/css/declarations.h"
#include "svg/css/selector.h"

namespace quorvel::svg {

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
    [[nodiscard]] bool match(const ElementNames& element, std::vector<CssDeclaration>* declarations) const;

  private:
    struct Rule {
        Selector selector;
        std::size_t order = 0;
        std::size_t firstDeclaration = 0, declarationCount = 0;
    };
    // One element's question.
    struct Query {
        ElementNames element;
        std::vector<const Rule*> found;
        std::size_t workLeft = 0;
        bool spend(std::size_t work);
    };
    void addRules(std::string_view text);
    void addBlock(std::string_view prelude, std::string_view block);
    // False when the work is more than is left.
    bool addMatches(const std::string& key, Query* query) const;
    bool addMatches(Query* query) const;

    std::vector<std::unique_ptr<std::string>> texts_;
    std::vector<CssDeclaration> declarations_;
    std::vector<Rule> rules_;
    // Each rule by the rarest name that it asks for, so that an element looks at few: "#id", ".class", "type" or "*".
    std::unordered_map<std::string, std::vector<std::size_t>> index_;
    bool skippedSome_ = false;
    mutable std::size_t workLeft_;
};

}  // namespace quorvel::svg
