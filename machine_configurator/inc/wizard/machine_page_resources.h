// The dialog templates of the wizard's product, machine, order number, form
// source, port and proxy pages.
#pragma once

void RegisterMachinePageResources();
