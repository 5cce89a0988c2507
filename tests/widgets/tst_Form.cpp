#include "widgets/Form.h"

#include <QtTest>

class tst_Form : public QObject
{
    Q_OBJECT

private slots:
    void minimisedFormComesUpWhenItIsShownAgain();
    void formThatIsMinimisedComesUp();
    void maximisedFormStaysSo();
};

void tst_Form::minimisedFormComesUpWhenItIsShownAgain()
{
    Form form(nullptr, Qt::Window);
    form.show();
    form.setWindowState(Qt::WindowMinimized);
    form.hide();
    QVERIFY(form.isMinimized());
    form.show();
    QVERIFY(!form.isMinimized());
    QVERIFY(QTest::qWaitForWindowExposed(&form));
}

void tst_Form::formThatIsMinimisedComesUp()
{
    Form form(nullptr, Qt::Window);
    form.show();
    form.setWindowState(Qt::WindowMinimized);
    QVERIFY(form.isMinimized());
    form.show();
    QVERIFY(!form.isMinimized());
}

void tst_Form::maximisedFormStaysSo()
{
    Form form(nullptr, Qt::Window);
    form.showMaximized();
    form.hide();
    form.show();
    QVERIFY(form.isMaximized());
}

QTEST_MAIN(tst_Form)
#include "tst_Form.moc"
