// A model's shadow outline: its faces, slanted by the toolkit's shadow slopes and brought to cells
// of the shadow map, painted into a shadow mask that the ground takes back.
#pragma once
#include "model/model.h"
#include "toolkit/shadowmask.h"
#include "toolkit/toolkit.h"

// Paints the outline into `given` when its cells are enough, else into a new mask from the model's
// pool; none for a model without faces. Throws without FM_GETSHADOW.
shadowmask* modelshadow(model& m, const toolkit& t, shadowmask* given);
