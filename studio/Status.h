#pragma once

#include <QString>
#include <QStringList>

// What a sentence in the status line tells, and where it leads.
enum class StatusTone { info, done, problem, failure };
struct StatusLink {
    QString folder = {};         // of the files that it tells of; empty for none
    bool isPurchase = false;     // of credits
    QStringList details = {};    // the names of what it only counts
};
