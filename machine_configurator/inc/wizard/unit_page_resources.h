// The dialog templates of the wizard's interface, drive unit, table and stand
// pages.
#pragma once

void RegisterUnitPageResources();
