#include "widgets/StateButton.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

/// What a screen reader gets to know of a button that is on or off by its look alone.
class tst_StateButton : public QObject
{
    Q_OBJECT

private slots:
    void itIsToldAsACheckBox();
    void itsMeaningIsAskedForOnDemandOnly();
    void aMeaningWhoseOwnerIsGoneIsNone();
    void aReaderCanPressIt();

private:
    static QAccessibleInterface* interfaceOf(QWidget& widget)
    {
        return QAccessible::queryAccessibleInterface(&widget);
    }
};

void tst_StateButton::itIsToldAsACheckBox()
{
    StateButton button(QStringLiteral("5"));
    button.setAccessibleName(QStringLiteral("Address 5"));
    QVERIFY(!button.isCheckable());
    QCOMPARE(interfaceOf(button)->role(), QAccessible::CheckBox);
    QCOMPARE(interfaceOf(button)->text(QAccessible::Name), QStringLiteral("Address 5"));
    QVERIFY(interfaceOf(button)->state().checkable);
    QVERIFY(!interfaceOf(button)->state().checked);
    button.setOn(true);
    QVERIFY(interfaceOf(button)->state().checked);
    QVERIFY(!interfaceOf(button)->state().pressed);
    button.setDown(true);
    QVERIFY(interfaceOf(button)->state().pressed);
}

void tst_StateButton::itsMeaningIsAskedForOnDemandOnly()
{
    StateButton button(QStringLiteral("5"));
    QCOMPARE(interfaceOf(button)->text(QAccessible::Description), QString());
    int asked = 0;
    button.setMeaning(this, [&asked] { return QStringLiteral("meaning %1").arg(++asked); });
    button.setOn(true);
    button.meaningChanged();
    QCOMPARE(asked, 0);
    QCOMPARE(interfaceOf(button)->text(QAccessible::Description), QStringLiteral("meaning 1"));
    QCOMPARE(interfaceOf(button)->text(QAccessible::Description), QStringLiteral("meaning 2"));
}

void tst_StateButton::aMeaningWhoseOwnerIsGoneIsNone()
{
    StateButton button(QStringLiteral("5"));
    auto owner = std::make_unique<QObject>();
    button.setMeaning(owner.get(), [] { return QStringLiteral("meaning"); });
    QCOMPARE(button.meaning(), QStringLiteral("meaning"));
    owner.reset();
    QCOMPARE(button.meaning(), QString());
}

void tst_StateButton::aReaderCanPressIt()
{
    StateButton button(QStringLiteral("5"));
    const QSignalSpy clicked(&button, &QPushButton::clicked);
    QAccessibleActionInterface* const actions = interfaceOf(button)->actionInterface();
    QVERIFY(actions != nullptr);
    QCOMPARE(actions->actionNames(),
             QStringList({QAccessibleActionInterface::toggleAction(), QAccessibleActionInterface::setFocusAction()}));
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(clicked.size(), 1);
    button.setEnabled(false);
    QVERIFY(!actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(clicked.size(), 1);
}

QTEST_MAIN(tst_StateButton)
#include "tst_StateButton.moc"
