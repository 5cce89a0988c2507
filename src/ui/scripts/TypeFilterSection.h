#pragma once

#include "ui/scripts/ScriptSection.h"

class QSpinBox;

/// The filter by type of terminal: a row of the catalogue, or four numbers of the script's own.
///
/// It keeps the trigger one that terminals of the filter's class can report, also when a script is only shown: the
/// state then has another name for the same code.
class TypeFilterSection : public ScriptSection
{
    Q_OBJECT

public:
    TypeFilterSection(const Ui::Setting_Script_Widget& form, const RelayInfo& relayInfo, QObject* parent);

    void switched();
    void switchOff();
    void typeChosen(int index);
    void setClass(int value);
    void setType(int value);
    void setNumber(QSpinBox* field, int value); ///< any of the four
    void featureClicked(QCheckBox* box);        ///< a flag in the low half of the type

signals:
    void filterChanged(); ///< other terminals may pass it now
    void stateAdapted();  ///< the trigger has another state

protected:
    void showScript() override;

private:
    /// A number of the filter, and the values of it that mean any.
    struct Number
    {
        QSpinBox* field;
        quint8 TerminalType::*number;
        int firstAny;
        int lastAny;
    };
    struct Feature
    {
        QCheckBox* box;
        int bit; ///< of the type
    };

    void fillTypes();
    void setUpNumbers();
    void paintList();
    void showNumbers();
    bool ownNumbers() const;
    void adaptStateToFilter();

    const RelayInfo& model;
    const QList<Number> numbers;
    const QList<Feature> features;
};
