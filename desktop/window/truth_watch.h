// Counts the dimensions that are no longer true while the user works.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <cstdint>
#include <vector>

#include "desktop/session.h"

namespace quorvel::desktop {

class TruthWatch : public QObject {
    Q_OBJECT

  public:
    explicit TruthWatch(Session* session, QObject* parent = nullptr);
    // Several times a second. Counts when the drawing has changed, but not while it goes on changing, and never so
    // often that the counting of a great many dimensions is felt.
    void tick();
    void countNow();
    const std::vector<doc::ArtId>& untrue() const { return untrue_; }
    QString text() const;  // "3 dimensions are no longer true - Ctrl+R"; empty when all are

  signals:
    void counted();

  private:
    Session* session_;
    std::uint64_t seen_ = 0, counted_ = 0;
    std::uint64_t document_ = 0;  // the number of the one that was counted
    QElapsedTimer sinceCount_;
    qint64 pause_ = 0;  // milliseconds
    std::vector<doc::ArtId> untrue_;
};

}  // namespace quorvel::desktop
