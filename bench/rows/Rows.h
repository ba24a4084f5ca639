#pragma once

/// Each registers what is measured in some rows of the table. How a row is measured, whoever does
/// it, is in the headers of this folder; `ours/` and `peers/` say who does it.
namespace Kest::Bench {

void measureLimits();
void measureGrowth();

/// What the library does.
void measureOurs();
void measureOurTexts();
void measureOurGenericReads();
void measureOurMachine();

/// What its rivals do.
void measurePeers();
void measureTheirTexts();
void measureTheirGenericReads();
void measureTheirMachine();

}  // namespace Kest::Bench
