#!/bin/sh
# Runs a program of the browser build in Node. Node 18 and newer have their own fetch, which Emscripten 3.1.6 mistakes
# for a browser's.
exec node --no-experimental-fetch "$@"
