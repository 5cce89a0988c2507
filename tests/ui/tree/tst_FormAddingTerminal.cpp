#include "model/RelayInfo.h"
#include "ui/tree/FormAddingTerminal.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <memory>

class tst_FormAddingTerminal : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formHasItsSizeFontAndTexts();
    void showingOffersOtherAndTheModels();
    void firstModelBeginsTheListAnew();
    void withoutModelsOtherWorks();
    void otherHasAFreeNameAndOneOutput();
    void chosenModelFillsTheFormAndLocksIt();
    void modelOfOneOutputFillsTheOtherNames();
    void modelOfFourOutputsIsCappedAtTwo();
    void modelWithoutOutputsHasOne();
    void backToOtherUnlocksTheForm();
    void unknownTextCountsAsOther();
    void modelsOfTheSameNameAreOne();
    void numberOfOutputsShowsTheirNames_data();
    void numberOfOutputsShowsTheirNames();
    void numberOfOutputsGoesUpToTwo();
    void takenAddressesAreNotOffered();
    void noFreeAddressDisablesAddingForGood();
    void addedTerminalIsReported();
    void addedAddressIsGoneAtTheNextShowing();
    void addressTakenMeanwhileIsNotAdded();
    void keysAloneAddATerminal();
    void returnAddsFromAnyField_data();
    void returnAddsFromAnyField();
    void returnOnCancelCancels();
    void escapeCancels();
    void opensOverItsWindowWithTheFirstFieldInFocus();
    void cancelKeepsNothing();
    void comingBackFromAnIconKeepsWhatWasEntered();
    void oddNamesArePassedOnAsTheyAre();
    void closesWithItsWindow();

private:
    struct Added
    {
        QString name;
        short address;
        QStringList outputs;
    };

    void showForm();
    template <typename Widget>
    Widget* part(const char* object) const
    {
        return form->findChild<Widget*>(QString::fromLatin1(object));
    }
    QLineEdit* outputEdit(int output) const
    {
        return form->findChild<QLineEdit*>(QStringLiteral("lineEditOutput%1").arg(output));
    }
    QLabel* outputLabel(int output) const
    {
        return form->findChild<QLabel*>(QStringLiteral("labelOutput%1").arg(output));
    }
    QStringList shownOutputs() const;
    static QStringList textsOf(const QComboBox* box);

    QSharedPointer<RelayInfo> info;
    std::unique_ptr<FormAddingTerminal> form;
    QComboBox* models = nullptr;
    QComboBox* addresses = nullptr;
    QSpinBox* count = nullptr;
    QLineEdit* name = nullptr;
    QPushButton* add = nullptr;
    QPushButton* cancel = nullptr;
    QList<Added> added;
};

void tst_FormAddingTerminal::init()
{
    info = QSharedPointer<RelayInfo>::create();
    form = std::make_unique<FormAddingTerminal>(info);
    models = part<QComboBox>("comboBoxTerminals");
    addresses = part<QComboBox>("comboBoxAddress");
    count = part<QSpinBox>("spinBoxOutputs");
    name = part<QLineEdit>("lineEditTerminal");
    add = part<QPushButton>("pushButton");
    cancel = part<QPushButton>("pushButtonClose");
    form->addTerminal(true, QStringLiteral("One"), {QStringLiteral("Lamp")});
    form->addTerminal(false, QStringLiteral("Two"), {QStringLiteral("Lamp"), QStringLiteral("Horn")});
    form->addTerminal(false, QStringLiteral("Four"),
                      {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D")});
    added.clear();
    connect(form.get(), &FormAddingTerminal::sig_addNewGroupRelay, this,
            [this](const QString& terminal, short address, const QStringList& outputs) {
                added.append({terminal, address, outputs});
            });
}

void tst_FormAddingTerminal::cleanup()
{
    form.reset();
    info.clear();
}

void tst_FormAddingTerminal::showForm()
{
    form->show();
    QVERIFY(QTest::qWaitForWindowActive(form.get()));
}

QStringList tst_FormAddingTerminal::shownOutputs() const
{
    QStringList shown;
    for (int output = 1; output <= 4; ++output) {
        if (outputEdit(output)->isVisible() && outputLabel(output)->isVisible()) {
            shown.append(outputEdit(output)->text());
        } else if (outputEdit(output)->isVisible() || outputLabel(output)->isVisible()) {
            shown.append(QStringLiteral("half"));
        }
    }
    return shown;
}

QStringList tst_FormAddingTerminal::textsOf(const QComboBox* box)
{
    QStringList rows;
    for (int row = 0; row < box->count(); ++row) {
        rows.append(box->itemText(row));
    }
    return rows;
}

void tst_FormAddingTerminal::formHasItsSizeFontAndTexts()
{
    showForm();
    QCOMPARE(form->minimumSize(), QSize(400, 307));
    QCOMPARE(form->maximumSize(), QSize(400, 307));
    QCOMPARE(form->font().pointSize(), 8);
    QCOMPARE(form->windowTitle(), QStringLiteral("Adding an executive terminal"));
    QCOMPARE(part<QLabel>("labelChoice")->text(), QStringLiteral("Executive terminal:"));
    QCOMPARE(part<QLabel>("labelName")->text(), QStringLiteral("Name of terminal:"));
    QCOMPARE(part<QLabel>("labelNum")->text(), QStringLiteral("Number of outputs:"));
    QCOMPARE(part<QLabel>("labelTitleaddress")->text(), QStringLiteral("Address of terminal:"));
    for (int output = 1; output <= 4; ++output) {
        QCOMPARE(outputLabel(output)->text(), QStringLiteral("Output %1:").arg(output));
    }
    QCOMPARE(add->text(), QStringLiteral("Add"));
    QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
    QCOMPARE(models->styleSheet(), QStringLiteral("combobox-popup: 0;"));
    for (const QComboBox* box : {models, addresses}) {
        QCOMPARE(box->font().family(), QStringLiteral("MS Shell Dlg 2"));
        QCOMPARE(box->font().pointSize(), 8);
    }
    QCOMPARE(count->alignment(), Qt::AlignCenter);
    QCOMPARE(form->windowModality(), Qt::NonModal);
    QVERIFY(form->isWindow());
}

void tst_FormAddingTerminal::showingOffersOtherAndTheModels()
{
    showForm();
    QCOMPARE(textsOf(models), QStringList({QStringLiteral("<other>"), QStringLiteral("One"), QStringLiteral("Two"),
                                           QStringLiteral("Four")}));
    QCOMPARE(models->currentText(), QStringLiteral("<other>"));
    models->setCurrentIndex(2);
    form->hide();
    showForm();
    QCOMPARE(models->count(), 4);
    QCOMPARE(models->currentText(), QStringLiteral("<other>"));
    QCOMPARE(name->text(), QStringLiteral("New executive terminal"));
}

void tst_FormAddingTerminal::firstModelBeginsTheListAnew()
{
    form->addTerminal(true, QStringLiteral("Six"), {});
    showForm();
    QCOMPARE(textsOf(models), QStringList({QStringLiteral("<other>"), QStringLiteral("Six")}));
}

void tst_FormAddingTerminal::withoutModelsOtherWorks()
{
    FormAddingTerminal bare(info);
    QSignalSpy spy(&bare, &FormAddingTerminal::sig_addNewGroupRelay);
    bare.show();
    const auto* offered = bare.findChild<QComboBox*>(QStringLiteral("comboBoxTerminals"));
    QCOMPARE(textsOf(offered), QStringList(QStringLiteral("<other>")));
    QTest::mouseClick(bare.findChild<QPushButton*>(QStringLiteral("pushButton")), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().at(0).toString(), QStringLiteral("New executive terminal"));
}

void tst_FormAddingTerminal::otherHasAFreeNameAndOneOutput()
{
    showForm();
    QVERIFY(name->isEnabled());
    QVERIFY(count->isEnabled());
    QCOMPARE(count->value(), 1);
    QCOMPARE(shownOutputs(), QStringList(QStringLiteral("Output")));
    for (int output = 1; output <= 4; ++output) {
        QCOMPARE(outputEdit(output)->text(), QStringLiteral("Output"));
    }
}

void tst_FormAddingTerminal::chosenModelFillsTheFormAndLocksIt()
{
    showForm();
    models->setCurrentText(QStringLiteral("Two"));
    QCOMPARE(name->text(), QStringLiteral("Two"));
    QVERIFY(!name->isEnabled());
    QCOMPARE(count->value(), 2);
    QVERIFY(!count->isEnabled());
    QCOMPARE(shownOutputs(), QStringList({QStringLiteral("Lamp"), QStringLiteral("Horn")}));
}

void tst_FormAddingTerminal::modelOfOneOutputFillsTheOtherNames()
{
    showForm();
    models->setCurrentText(QStringLiteral("One"));
    QCOMPARE(shownOutputs(), QStringList(QStringLiteral("Lamp")));
    QCOMPARE(outputEdit(2)->text(), QStringLiteral("Output"));
    QCOMPARE(outputEdit(4)->text(), QStringLiteral("Output"));
}

void tst_FormAddingTerminal::modelOfFourOutputsIsCappedAtTwo()
{
    showForm();
    models->setCurrentText(QStringLiteral("Four"));
    QCOMPARE(count->value(), 2);
    QVERIFY(!count->isEnabled());
    QCOMPARE(shownOutputs(), QStringList({QStringLiteral("A"), QStringLiteral("B")}));
    QCOMPARE(outputEdit(4)->text(), QStringLiteral("D"));
}

void tst_FormAddingTerminal::modelWithoutOutputsHasOne()
{
    form->addTerminal(false, QStringLiteral("None"), {});
    showForm();
    models->setCurrentText(QStringLiteral("Two"));
    models->setCurrentText(QStringLiteral("None"));
    QCOMPARE(shownOutputs(), QStringList(QStringLiteral("Output")));
}

void tst_FormAddingTerminal::backToOtherUnlocksTheForm()
{
    showForm();
    models->setCurrentText(QStringLiteral("Two"));
    models->setFocus();
    QTest::keyClick(models, Qt::Key_Home);
    QCOMPARE(models->currentText(), QStringLiteral("<other>"));
    QVERIFY(name->isEnabled());
    QVERIFY(count->isEnabled());
    QCOMPARE(name->text(), QStringLiteral("New executive terminal"));
    QCOMPARE(shownOutputs(), QStringList(QStringLiteral("Output")));
}

void tst_FormAddingTerminal::unknownTextCountsAsOther()
{
    showForm();
    form->on_comboBoxTerminals_currentIndexChanged(QStringLiteral("Two"));
    form->on_comboBoxTerminals_currentIndexChanged(QStringLiteral("no such model"));
    QVERIFY(name->isEnabled());
    QCOMPARE(shownOutputs(), QStringList(QStringLiteral("Output")));
}

void tst_FormAddingTerminal::modelsOfTheSameNameAreOne()
{
    form->addTerminal(false, QStringLiteral("Two"), {QStringLiteral("X")});
    showForm();
    models->setCurrentIndex(4);
    QCOMPARE(shownOutputs(), QStringList({QStringLiteral("Lamp"), QStringLiteral("Horn")}));
}

void tst_FormAddingTerminal::numberOfOutputsShowsTheirNames_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("shown");
    for (int number = 0; number <= 5; ++number) {
        QTest::addRow("%d", number) << number << qMin(number, 4);
    }
}

void tst_FormAddingTerminal::numberOfOutputsShowsTheirNames()
{
    QFETCH(int, number);
    QFETCH(int, shown);
    showForm();
    form->on_spinBoxOutputs_valueChanged(number);
    QCOMPARE(shownOutputs().size(), shown);
    QVERIFY(!shownOutputs().contains(QStringLiteral("half")));
    QCOMPARE(outputEdit(1)->isVisible(), shown > 0);
}

void tst_FormAddingTerminal::numberOfOutputsGoesUpToTwo()
{
    showForm();
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(count, Qt::Key_Up);
    }
    QCOMPARE(count->value(), 2);
    QCOMPARE(shownOutputs().size(), 2);
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(count, Qt::Key_Down);
    }
    QCOMPARE(count->value(), 1);
    QCOMPARE(shownOutputs().size(), 1);
}

void tst_FormAddingTerminal::takenAddressesAreNotOffered()
{
    info->addGroup(QStringLiteral("a"), 1);
    info->addGroup(QStringLiteral("b"), 30);
    showForm();
    const QStringList offered = textsOf(addresses);
    QCOMPARE(offered.size(), 29);
    QCOMPARE(offered.first(), QStringLiteral("2"));
    QCOMPARE(offered.last(), QStringLiteral("31"));
    QVERIFY(!offered.contains(QStringLiteral("30")));
    QVERIFY(add->isEnabled());
}

void tst_FormAddingTerminal::noFreeAddressDisablesAddingForGood()
{
    for (quint16 address = 1; address < 32; ++address) {
        info->addGroup(QStringLiteral("t"), address);
    }
    showForm();
    QCOMPARE(textsOf(addresses), QStringList(QStringLiteral("---")));
    QVERIFY(!add->isEnabled());
    QTest::mouseClick(add, Qt::LeftButton);
    form->on_pushButton_clicked();
    QVERIFY(added.isEmpty());
    form->hide();
    info->resetGroups(true);
    showForm();
    QCOMPARE(addresses->count(), 31);
    QVERIFY(!add->isEnabled());
}

void tst_FormAddingTerminal::addedTerminalIsReported()
{
    showForm();
    models->setCurrentText(QStringLiteral("Two"));
    addresses->setCurrentText(QStringLiteral("17"));
    outputEdit(2)->setText(QStringLiteral("Siren"));
    QTest::mouseClick(add, Qt::LeftButton);
    QCOMPARE(added.size(), 1);
    QCOMPARE(added.first().name, QStringLiteral("Two"));
    QCOMPARE(added.first().address, short(17));
    QCOMPARE(added.first().outputs, QStringList({QStringLiteral("Lamp"), QStringLiteral("Siren")}));
    QVERIFY(!form->isVisible());
}

void tst_FormAddingTerminal::addedAddressIsGoneAtTheNextShowing()
{
    connect(form.get(), &FormAddingTerminal::sig_addNewGroupRelay, info.data(),
            [this](const QString& terminal, short address) { info->addGroup(terminal, quint16(address)); });
    for (int expected = 1; expected <= 3; ++expected) {
        showForm();
        QTest::mouseClick(add, Qt::LeftButton);
        QCOMPARE(added.last().address, short(expected));
    }
    showForm();
    QCOMPARE(addresses->itemText(0), QStringLiteral("4"));
}

void tst_FormAddingTerminal::addressTakenMeanwhileIsNotAdded()
{
    showForm();
    addresses->setCurrentText(QStringLiteral("5"));
    info->addGroup(QStringLiteral("from a reading"), 5);
    QTest::mouseClick(add, Qt::LeftButton);
    QVERIFY(added.isEmpty());
    QVERIFY(form->isVisible());
    QVERIFY(!textsOf(addresses).contains(QStringLiteral("5")));
    QTest::mouseClick(add, Qt::LeftButton);
    QCOMPARE(added.size(), 1);
}

void tst_FormAddingTerminal::keysAloneAddATerminal()
{
    showForm();
    name->setFocus();
    name->selectAll();
    QTest::keyClicks(name, QStringLiteral("Siren"));
    // From field to field in the order in which they stand.
    QStringList walk;
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
        walk.append(form->focusWidget()->objectName());
    }
    QCOMPARE(walk, QStringList({QStringLiteral("comboBoxAddress"), QStringLiteral("spinBoxOutputs"),
                                QStringLiteral("lineEditOutput1"), QStringLiteral("pushButton"),
                                QStringLiteral("pushButtonClose")}));
    add->setFocus();
    QTest::keyClick(add, Qt::Key_Space);
    QCOMPARE(added.size(), 1);
    QCOMPARE(added.first().name, QStringLiteral("Siren"));
}

void tst_FormAddingTerminal::returnAddsFromAnyField_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("field");
    for (const char* field :
         {"comboBoxTerminals", "lineEditTerminal", "comboBoxAddress", "spinBoxOutputs", "lineEditOutput1"}) {
        QTest::newRow(field) << int(Qt::Key_Return) << QString::fromLatin1(field);
    }
    QTest::newRow("enter of the number pad") << int(Qt::Key_Enter) << QStringLiteral("lineEditTerminal");
}

void tst_FormAddingTerminal::returnAddsFromAnyField()
{
    QFETCH(int, key);
    QFETCH(QString, field);
    showForm();
    auto* const widget = form->findChild<QWidget*>(field);
    widget->setFocus();
    QTest::keyClick(widget, static_cast<Qt::Key>(key));
    QCOMPARE(added.size(), 1);
    QVERIFY(!form->isVisible());
}

void tst_FormAddingTerminal::returnOnCancelCancels()
{
    showForm();
    cancel->setFocus();
    QTest::keyClick(cancel, Qt::Key_Return);
    QVERIFY(added.isEmpty());
    QVERIFY(!form->isVisible());
}

void tst_FormAddingTerminal::escapeCancels()
{
    showForm();
    name->setFocus();
    QTest::keyClick(name, Qt::Key_Escape);
    QVERIFY(added.isEmpty());
    QVERIFY(!form->isVisible());
}

void tst_FormAddingTerminal::opensOverItsWindowWithTheFirstFieldInFocus()
{
    QWidget window;
    window.setGeometry(350, 250, 420, 320);
    window.show();
    auto* const child = new FormAddingTerminal(info, &window);
    for (int showing = 0; showing < 2; ++showing) {
        child->show();
        QVERIFY(QTest::qWaitForWindowActive(child));
        const QPoint distance = child->geometry().center() - window.frameGeometry().center();
        QVERIFY(distance.manhattanLength() <= 2);
        QCOMPARE(child->focusWidget()->objectName(), QStringLiteral("comboBoxTerminals"));
        child->findChild<QLineEdit*>(QStringLiteral("lineEditTerminal"))->setFocus();
        child->hide();
        window.move(200, 150);
    }
}

void tst_FormAddingTerminal::cancelKeepsNothing()
{
    showForm();
    name->setText(QStringLiteral("x"));
    QTest::mouseClick(cancel, Qt::LeftButton);
    QVERIFY(!form->isVisible());
    QVERIFY(added.isEmpty());
    showForm();
    QCOMPARE(name->text(), QStringLiteral("New executive terminal"));
}

void tst_FormAddingTerminal::comingBackFromAnIconKeepsWhatWasEntered()
{
    showForm();
    name->setText(QStringLiteral("Siren"));
    QShowEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(form.get(), &event);
    QCOMPARE(name->text(), QStringLiteral("Siren"));
}

void tst_FormAddingTerminal::oddNamesArePassedOnAsTheyAre()
{
    const QString odd = QStringLiteral("<b>%1 & \"Реле\"</b>");
    form->addTerminal(false, odd, {QString(200, QLatin1Char('W'))});
    showForm();
    models->setCurrentText(odd);
    QCOMPARE(form->size(), QSize(400, 307));
    QTest::mouseClick(add, Qt::LeftButton);
    QCOMPARE(added.first().name, odd);
    QCOMPARE(added.first().outputs, QStringList(QString(200, QLatin1Char('W'))));
}

void tst_FormAddingTerminal::closesWithItsWindow()
{
    auto window = std::make_unique<QWidget>();
    auto* child = new FormAddingTerminal(info, window.get());
    QPointer<FormAddingTerminal> watched = child;
    window->show();
    child->show();
    QVERIFY(child->isWindow());
    window->close();
    QTRY_VERIFY(!child->isVisible());
    window.reset();
    QVERIFY(watched.isNull());
}

QTEST_MAIN(tst_FormAddingTerminal)
#include "tst_FormAddingTerminal.moc"
