// Looks templates up by id, in either language.
#include "plugin/resources/dialog_templates.h"

#include <vector>

namespace quorvel {

namespace {

platform::DialogTemplate MakeTemplate(const DialogSource& source, platform::Language language) {
    const bool english = language == platform::Language::english;
    const std::span<const platform::ControlRow> rows = english ? source.englishRows : source.japaneseRows;
    return {source.id + (english ? kEnglishDialogOffset : 0),
            language,
            english ? source.englishTitle : source.japaneseTitle,
            source.width,
            source.height,
            rows.data(),
            static_cast<std::int32_t>(rows.size())};
}

// One dialog may be open over another, so each template has a place of its own.
std::vector<platform::DialogTemplate> MakeTemplates() {
    std::vector<platform::DialogTemplate> templates;
    for (const std::span<const DialogSource> sources :
         {SmallDialogSources(), ScheduleDialogSources(), SettingsDialogSources()}) {
        for (const DialogSource& source : sources) {
            templates.push_back(MakeTemplate(source, platform::Language::japanese));
            templates.push_back(MakeTemplate(source, platform::Language::english));
        }
    }
    return templates;
}

}  // namespace

const platform::DialogTemplate* FindDialogTemplate(std::int32_t id) {
    static const std::vector<platform::DialogTemplate> templates = MakeTemplates();
    for (const platform::DialogTemplate& dialog : templates)
        if (dialog.id == id) return &dialog;
    return nullptr;
}

}  // namespace quorvel
