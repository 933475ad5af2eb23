#!/bin/sh
# Runs a program of the browser build in Node. Node 18 and newer have a fetch of their own, which Emscripten 3.1.6 takes
# for a browser's.
exec node --no-experimental-fetch "$@"
