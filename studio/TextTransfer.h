#pragma once

#include <QCoroTask>

#include <QPointer>
#include <QString>

class StudioSession;

// Imports and exports the texts of the batch as a spreadsheet file. The outcome becomes the
// session's status sentence.

// The reason why no texts can be imported now, as a sentence for the user; empty if they can.
QString refusalOfTexts(const StudioSession& session);

QCoro::Task<> importTexts(QPointer<StudioSession> session, QString path);
QCoro::Task<> exportTexts(QPointer<StudioSession> session, QString path);
