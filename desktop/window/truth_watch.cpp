#include "desktop/window/truth_watch.h"

#include <algorithm>

#include "app/recalculation.h"

namespace quorvel::desktop {

namespace {

constexpr qint64 kShortestPause = 600, kPauseFactor = 20;  // milliseconds; times as long as a count takes

}  // namespace

TruthWatch::TruthWatch(Session* session, QObject* parent) : QObject(parent), session_(session) {}

void TruthWatch::tick() {
    const doc::Document* document = session_->document();
    if (document == nullptr) {
        if (!untrue_.empty()) countNow();
        return;
    }
    const bool rests = seen_ == document->changeCount();
    seen_ = document->changeCount();
    const bool isCounted = document_ == document->number() && counted_ == seen_;
    const bool isDue = !sinceCount_.isValid() || sinceCount_.hasExpired(pause_);
    if (rests && !isCounted && isDue) countNow();
}

void TruthWatch::countNow() {
    std::vector<doc::ArtId> found;
    QElapsedTimer taken;
    taken.start();
    if (const doc::Document* document = session_->document()) {
        const auto checks = app::tryCheck(session_->host(), false);
        pause_ = std::max(kShortestPause, taken.elapsed() * kPauseFactor);
        sinceCount_.start();
        if (!checks) return;
        for (const app::DimensionCheck& check : *checks)
            if (check.untrue()) found.push_back(check.group);
        counted_ = seen_ = document->changeCount();
        document_ = document->number();
    }
    if (found == untrue_) return;
    untrue_ = std::move(found);
    emit counted();
}

QString TruthWatch::text() const {
    if (untrue_.empty()) return {};
    if (untrue_.size() == 1)
        return session_->say("1 dimension is no longer true - Ctrl+R", "正しくない寸法が 1 つあります - Ctrl+R");
    return session_->say("%1 dimensions are no longer true - Ctrl+R", "正しくない寸法が %1 つあります - Ctrl+R")
        .arg(untrue_.size());
}

}  // namespace quorvel::desktop
