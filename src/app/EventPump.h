#pragma once

// Lets pending window events run once. Waits for outside programs call it in
// their polling loops so the window stays responsive.
void pumpEvents();
