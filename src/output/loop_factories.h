#pragma once

#include "output/keyword_handlers.h"

namespace ibis {

LoopFunction forAllModels;              ///< All models of the file, used or not.
LoopFunction forEachComponent;          ///< All components of the file.
LoopFunction forEachDiffPin;            ///< The component's [Diff Pin] rows.
LoopFunction forEachFilePin;            ///< The entries of every component of the file.
LoopFunction forEachModel;              ///< The models that the component uses.
LoopFunction forEachModelSelector;      ///< The rows of every selector of the file.
LoopFunction forEachPin;                ///< The component's [Pin] rows, halves of pairs included.
LoopFunction forEachSpicePin;           ///< The component's entries.
LoopFunction forEachUserModelSelector;  ///< The user's selector choices.
LoopFunction forEachWaveform;           ///< Of each model in use, rising ones first.

// The component's entries by model type; a loop of several types goes type by type.
LoopFunction forEachGnd;
LoopFunction forEachInput;
LoopFunction forEachInputOutput;
LoopFunction forEachOutput;
LoopFunction forEachPower;
LoopFunction forEachTerminator;
LoopFunction forEachThreeState;

}  // namespace ibis
