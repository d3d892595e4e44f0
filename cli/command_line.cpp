// The tables of commands.cpp are handed to the parser; what it refuses becomes an error like any other.
#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <iostream>

#include "app/sentences.h"
#include "cli/commands.h"
#include "cli/standard_output.h"
#include "files/termination.h"

namespace quorvel::cli {

namespace {

std::optional<double> numberIn(const std::string& text) {
    double value = 0;
    if (!CLI::detail::lexical_cast(text, value)) return std::nullopt;
    return value;
}

// choices: "{a,b}"
bool isOneOf(const std::string& text, std::string_view choices) {
    const std::vector<std::string> all = CLI::detail::split(std::string(choices.substr(1, choices.size() - 2)), ',');
    return std::ranges::find(all, text) != all.end();
}

Status checkText(const OptionCheck& check, const std::string& text) {
    const std::optional<double> number = numberIn(text);
    switch (check.kind) {
        case OptionCheck::kNone:
            break;
        case OptionCheck::kOneOf:
            if (!isOneOf(text, check.said)) return makeError(ErrorCode::kNotOneOf, {text, check.said});
            break;
        case OptionCheck::kAboveZero:
            if (!(number && *number > 0 && *number < INFINITY)) return makeError(ErrorCode::kNotAboveZero);
            break;
        case OptionCheck::kInRange:
            if (!(number && *number >= check.least && *number <= check.most))
                return makeError(ErrorCode::kNotInRange,
                                 {text, std::to_string(check.least), std::to_string(check.most)});
            break;
    }
    return {};
}

class CommandLine {
  public:
    CommandLine();
    // Nothing when the help has been asked for and shown.
    Result<const CommandRow*> parse(int argc, char** argv);
    const Options& options() const { return options_; }
    // "quorvel snap" once a command is named.
    std::string program() const;

  private:
    void add(CLI::App* command, const OptionRow& row);
    Error errorOf(const CLI::ParseError& refusal) const;
    const CLI::App* chosen() const;
    // The option that the parser's words name first.
    const CLI::Option* optionIn(const std::string& words) const;

    CLI::App app_{"Quorvel dimensions vector drawings: SVG in, SVG out, every other byte kept."};
    Options options_;
    std::optional<Error> refused_;  // by a check
};

CommandLine::CommandLine() {
    app_.require_subcommand(1);
    app_.footer("Example: quorvel run examples/bracket.script");
    for (const CommandRow& row : commandTable()) {
        CLI::App* command = app_.add_subcommand(row.name, row.what);
        command->footer(std::string("Example: quorvel ") + row.name + " " + row.example);
        for (const OptionRow& option : sharedOptions()) add(command, option);
        for (const OptionRow& option : row.options) add(command, option);
    }
}

void CommandLine::add(CLI::App* command, const OptionRow& row) {
    CLI::Option* option = std::visit(
        [&](auto member) -> CLI::Option* {
            auto& target = options_.*member;
            if constexpr (std::is_same_v<decltype(member), bool Options::*>)
                return command->add_flag(row.names, target, row.what);
            else
                return command->add_option(row.names, target, row.what);
        },
        row.target);
    option->required(row.isRequired);
    if (row.delimiter != 0) option->delimiter(row.delimiter);
    // A list that is named takes one text, so that it does not swallow the drawings behind it.
    const bool isNamed = row.names[0] == '-';
    if (isNamed && std::holds_alternative<std::vector<std::string> Options::*>(row.target))
        option->allow_extra_args(false);
    if (row.check.kind == OptionCheck::kNone) return;
    const auto check = [this, &row](std::string& text) {
        const Status checked = checkText(row.check, text);
        if (checked) return std::string();
        refused_ = Error(checked.error()).inFile(row.names);
        return std::string("refused");
    };
    option->check(CLI::Validator(check, row.check.said));
}

const CLI::App* CommandLine::chosen() const {
    const auto commands = app_.get_subcommands();
    return commands.empty() ? nullptr : commands.front();
}

std::string CommandLine::program() const { return chosen() == nullptr ? "quorvel" : "quorvel " + chosen()->get_name(); }

const CLI::Option* CommandLine::optionIn(const std::string& words) const {
    const CLI::Option* first = nullptr;
    std::size_t place = std::string::npos;
    for (const CLI::Option* option : chosen()->get_options()) {
        const std::size_t found = words.find(option->get_name());
        if (found >= place) continue;
        first = option;
        place = found;
    }
    return first;
}

Error CommandLine::errorOf(const CLI::ParseError& refusal) const {
    const Error otherwise = makeError(ErrorCode::kOptionRefused, {refusal.what()});
    if (refused_) return *refused_;
    if (chosen() == nullptr)
        return dynamic_cast<const CLI::RequiredError*>(&refusal) ? makeError(ErrorCode::kNoCommand) : otherwise;
    if (dynamic_cast<const CLI::ExtrasError*>(&refusal) != nullptr) {
        std::vector<std::string> rest = chosen()->remaining();
        std::ranges::reverse(rest);
        return makeError(rest.size() == 1 ? ErrorCode::kUnexpectedArgument : ErrorCode::kUnexpectedArguments,
                         {CLI::detail::join(rest, " ")});
    }
    const CLI::Option* option = optionIn(refusal.what());
    if (option == nullptr) return otherwise;
    const std::string name = option->get_name();
    if (dynamic_cast<const CLI::RequiredError*>(&refusal) != nullptr)
        return makeError(ErrorCode::kOptionMissing, {name});
    if (dynamic_cast<const CLI::ConversionError*>(&refusal) != nullptr)
        return makeError(ErrorCode::kNotConvertible, {name, CLI::detail::join(option->results(), " ")});
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&refusal) == nullptr) return otherwise;
    if (option->count() > 1)
        return makeError(ErrorCode::kOptionRepeated, {std::to_string(option->count())}).inFile(name);
    return makeError(ErrorCode::kOptionWithoutValue, {option->get_type_name()}).inFile(name);
}

Result<const CommandRow*> CommandLine::parse(int argc, char** argv) {
    try {
        app_.parse(argc, argv);
    } catch (const CLI::Success& help) {
        app_.exit(help);
        return nullptr;
    } catch (const CLI::ParseError& refusal) {
        return errorOf(refusal);
    }
    const auto row = std::ranges::find(commandTable(), chosen()->get_name(), &CommandRow::name);
    return &*row;
}

// Known before anything else, because a command line that cannot be read is refused in this language too.
app::Language languageAsked(int argc, char** argv) {
    app::SessionOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        constexpr std::string_view kName = "--language";
        if (word == kName && i + 1 < argc) options.language = argv[i + 1];
        if (word.starts_with(kName) && word.substr(kName.size()).starts_with('='))
            options.language = word.substr(kName.size() + 1);
    }
    return app::languageOf(options);
}

int runNamedCommand(int argc, char** argv, app::Language language) {
    CommandLine line;
    const Result<const CommandRow*> row = line.parse(argc, argv);
    if (!row) {
        // The name of the program parts from the sentence with a colon once it is that of a command.
        const std::string program = line.program();
        std::cerr << program << (program.find(' ') == std::string::npos ? " " : ": ")
                  << app::sentence(row.error(), language) << '\n';
        return kExitBadInput;
    }
    if (*row == nullptr) return kExitOk;
    const Options& options = line.options();
    try {
        const Result<int> status = (*row)->run(options);
        if (status) return *status;
        std::cerr << app::sentence(status.error(), language) << '\n';
    } catch (const std::exception& thrown) {
        const Error error =
            makeError(ErrorCode::kInternal, {thrown.what()}).inFile(options.file.empty() ? "quorvel" : options.file);
        std::cerr << app::sentence(error, language) << '\n';
    }
    return kExitBadInput;
}

}  // namespace

int runCommandLine(int argc, char** argv) {
    secureStandardStreams();
    files::terminateCleanly();
    const app::Language language = languageAsked(argc, argv);
    StandardOutput output;
    const int status = runNamedCommand(argc, argv, language);
    const Status written = output.finish();
    if (written) return status;
    std::cerr << app::sentence(Error(written.error()).inFile("quorvel"), language) << '\n';
    return kExitBadInput;
}

}  // namespace quorvel::cli
