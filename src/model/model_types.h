#pragma once

#include <string>

#include "ibis/model.h"

namespace ibis {

bool hasOutput(ModelType type);          ///< Drives its pin.
bool hasInput(ModelType type);           ///< Receives from its pin.
bool hasEnable(ModelType type);          ///< Its driver can be switched off.
bool hasPushPullOutput(ModelType type);  ///< Drives high and low: two waveforms an edge.
bool hasOneSidedOutput(ModelType type);  ///< Open or ECL driver: one waveform an edge.
bool hasPolarity(ModelType type);        ///< Every type but GND, POWER, NC and Terminator.
bool needsPulldown(ModelType type);
bool needsPullup(ModelType type);
bool isBuiltIn(ModelType type);  ///< GND, POWER or NC, which have no device.

/// A type's word with "_" for each "/" and "-".
std::string typeText(ModelType type);

/// The word for a type's device: the open types share one name; "/" and "-" stay.
IBISString modelTypeText(ModelType type);

/// The name of the simulator's device for a type: modelTypeText with "_" for "/" and "-".
std::string alternativeTypeText(ModelType type);

}  // namespace ibis
