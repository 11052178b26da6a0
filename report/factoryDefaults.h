#pragma once

/**
 * Puts every setting of the unit back to its factory value, family by family. A write that fails is
 * reported (see reportError) and the next one follows; features that the unit lacks are passed over
 * in silence. Stands still for 1.6 seconds in all, in which the touch controller changes its mode,
 * and handles no events. Main thread only.
 */
void applyFactoryDefaults();
