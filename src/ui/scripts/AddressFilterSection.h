#pragma once

#include "ui/scripts/AddressButton.h"
#include "ui/scripts/ScriptSection.h"

/// The filter by addresses: a round button for each address, whose ring tells whether a terminal was reported there and
/// whether it passes the filter by type.
class AddressFilterSection : public ScriptSection
{
    Q_OBJECT

public:
    AddressFilterSection(const Ui::Setting_Script_Widget& form, const RelayInfo& relayInfo, QObject* parent);

    const QList<AddressButton>& buttons() const
    {
        return addressButtons;
    }

    void switched();
    void addressClicked(const QObject* button);
    void refresh(); ///< the connected terminals or the filter by type have changed

protected:
    void showScript() override;

private:
    static void paintButton(const AddressButton& entry);
    void addButton(const QString& text, int address, int index);

    const RelayInfo& model;
    QList<AddressButton> addressButtons;
};
