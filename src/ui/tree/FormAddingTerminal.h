#pragma once

#include "widgets/Form.h"

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include <memory>

class QLabel;
class QLineEdit;
class RelayInfo;

namespace Ui
{
class FormAddingTerminal;
}

/// The small window in which the user adds an executive terminal by hand: a model of the catalogue or "<other>", a
/// free address and the names of the outputs.
///
/// Owned by the main window, and a window of its own that closes with it; not modal; GUI thread only. It is refilled
/// at every showing, so nothing is kept of what was entered. The Return key adds, Escape cancels. The result is one
/// signal.
class FormAddingTerminal : public Form
{
    Q_OBJECT

public:
    explicit FormAddingTerminal(QSharedPointer<RelayInfo> info, QWidget* parent = nullptr);
    ~FormAddingTerminal() override;
    Q_DISABLE_COPY_MOVE(FormAddingTerminal)

    /// Offers a model with its default output names. With first set the list is begun anew, with "<other>" in front.
    void addTerminal(bool first, const QString& name, const QStringList& outputNames);

    /// Closes the form together with the window that owns it.
    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    void on_spinBoxOutputs_valueChanged(int arg1);
    void on_comboBoxTerminals_currentIndexChanged(const QString& text);
    void on_pushButtonClose_clicked();
    void on_pushButton_clicked();

signals:
    void sig_addNewGroupRelay(const QString& name, short address, const QStringList& outputNames);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct TerminalChoice
    {
        QString name;
        QStringList outputs; ///< default output names
    };

    struct OutputRow
    {
        QLabel* label;
        QLineEdit* edit;
    };

    void setTexts();
    void placeOverWindow();
    void fillTerminals();
    void fillAddresses();
    QStringList freeAddresses() const;

    std::unique_ptr<Ui::FormAddingTerminal> ui;
    QSharedPointer<RelayInfo> relayInfo;
    QList<TerminalChoice> terminals; ///< never empty: "<other>" is always offered, and first
    QList<OutputRow> outputs;
};
