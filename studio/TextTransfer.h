#pragma once

#include <QCoroTask>

#include <QPointer>
#include <QString>

class StudioSession;

// The texts of the batch from and to a file of a spreadsheet. What came of it is told in the
// session's status.

// Why no texts can come in now, as a sentence; empty when they can.
QString refusalOfTexts(const StudioSession& session);

QCoro::Task<> importTexts(QPointer<StudioSession> session, QString path);
QCoro::Task<> exportTexts(QPointer<StudioSession> session, QString path);
