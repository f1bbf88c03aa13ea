#pragma once

#include "scene.h"

namespace tqtest {

/// Calls that take what another call has written: byte strings, compressed images, files. Most come as they
/// were made, some are cut or have a byte changed.
void CallColorBitmapToImage(Scene& scene, Fingerprint& print);
void CallCompressImage(Scene& scene, Fingerprint& print);
void CallDecompressImage(Scene& scene, Fingerprint& print);
void CallDiskBmpToImage(Scene& scene, Fingerprint& print);
void CallHandleToString(Scene& scene, Fingerprint& print);
void CallStringToHandle(Scene& scene, Fingerprint& print);
void CallStringToHandle2(Scene& scene, Fingerprint& print);

}  // namespace tqtest
