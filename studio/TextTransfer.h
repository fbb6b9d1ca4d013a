#pragma once

#include <QCoroTask>

#include <QPointer>
#include <QString>

class StudioSession;

// Imports the batch's texts from a spreadsheet's file, and exports them to one. The outcome becomes
// the session's status.

// Why no texts can be imported now, as a sentence; empty when they can.
QString refusalOfTexts(const StudioSession& session);

QCoro::Task<> importTexts(QPointer<StudioSession> session, QString path);
QCoro::Task<> exportTexts(QPointer<StudioSession> session, QString path);
