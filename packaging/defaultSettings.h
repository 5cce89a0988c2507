#pragma once

class RelayInfo;

/// Fills a reset model with the settings that a unit leaves the factory with: fire alarm to a siren, faults to a lamp,
/// arm and disarm by the buttons. The file delivered beside the program is made from it by the model's own writer.
void fillDefaultSettings(RelayInfo& model);
