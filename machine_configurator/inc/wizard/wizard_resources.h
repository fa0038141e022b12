// Dialog templates of the wizard: the frame, the summary page and, through
// the page families' own registrations, every other page.
#pragma once

void RegisterWizardResources();
