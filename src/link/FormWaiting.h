#pragma once

#include "widgets/Form.h"

#include <QElapsedTimer>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui
{
class FormWaiting;
}
QT_END_NAMESPACE

class QTimer;

/// The busy form: tells what the program is doing and how far it is, and keeps the user away from everything else.
///
/// It has no buttons and can't be closed, neither by the user nor by a window manager: whoever shows it hides it. Its
/// parent is the window that it keeps the user away from; when that has been closed, it goes without resistance.
/// Created by the coordinator form, owned by its parent; GUI thread.
class FormWaiting : public Form
{
    Q_OBJECT

public:
    explicit FormWaiting(QWidget* parent = nullptr);
    ~FormWaiting() override;
    Q_DISABLE_COPY_MOVE(FormWaiting)

    /// Sets text and range, and the value to 0.
    void setOperation(const QString& text, int minimum, int maximum);
    void setProgressMaximum(int maximum);
    void setOperationText(const QString& text);
    /// Adds 1 to the value unless it stands at the maximum. The picture follows a little later, so that a step costs
    /// next to nothing where it is called: between an answer and the next request.
    void stepProgress();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void paintProgress();

    std::unique_ptr<Ui::FormWaiting> ui;
    QTimer* timerPaint;
    QElapsedTimer sincePaint;
};
