#pragma once

#include "analysecommand.h"
#include "command.h"

namespace zf::cli {

// zettelfischer-cli transfer --new|--edit: analyses the input like analyse and files the rows
// as a contact, as the window's "Neu Anlegen" and "Bearbeiten" do.
class TransferCommand : public Command {
public:
    TransferCommand();

protected:
    QString synopsis() const override;
    QString details() const override;
    int execute(const QCommandLineParser& parser) override;

private:
    QCommandLineOption m_new;
    QCommandLineOption m_edit;
    QCommandLineOption m_allowDuplicate;
    QCommandLineOption m_updateDuplicate;
    QCommandLineOption m_contacts;
    AnalyseOptionSet m_options;
};

} // namespace zf::cli
