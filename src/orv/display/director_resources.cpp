// Start-up and shutdown of the director's named resources and make-ups.
#include "orv/director.h"

void OrvDirector::initResourceSlots() {
  colors = new OrvStringHashTable(1000);
  images = new OrvList;
  fonts = new OrvStringHashTable(1000);
  vfonts = new OrvStringHashTable(1000);
  makeUps = 0;
  textures = 0;
  bitmaps = new OrvList;
  cursors = new OrvList;
  patterns = new OrvList;
  lineStyles = new OrvList;
  environments = new OrvList;
  defaultMakeUp = wideMakeUp = 0;
  defaultFont = 0;
  defaultVectorialFont = 0;
  defaultBackground = defaultForeground = 0;
  solidPattern = 0;
  defaultCursor = 0;
  solidLineStyle = 0;
  screenBufferBitmap = 0;
  tmpMakeUpObject = 0;
  tmpTextureObject = 0;
  defaultEnvironment = 0;
}

void OrvDirector::initResources() {}

void OrvDirector::closeResources() {
  if (!closed) return;
  closeRolesAndViews();
  closeTimers();
  delete colors; colors = 0;
  delete images; images = 0;
  delete fonts; fonts = 0;
  delete vfonts; vfonts = 0;
  delete bitmaps; bitmaps = 0;
  delete cursors; cursors = 0;
  delete patterns; patterns = 0;
  delete lineStyles; lineStyles = 0;
  delete environments; environments = 0;
}
