#!/usr/bin/env python3
"""Unpacks an OCI image of one layer: tools/unpack_image.py IMAGE.tar FOLDER. Checks the digests on the way, and that
the image has a user of its own."""

import gzip
import hashlib
import io
import json
import sys
import tarfile


def main():
    archive, folder = sys.argv[1:]
    with tarfile.open(archive) as image:
        def blob(entry):
            kind, digest = entry["digest"].split(":")
            data = image.extractfile(f"blobs/{kind}/{digest}").read()
            if hashlib.new(kind, data).hexdigest() != digest or len(data) != entry["size"]:
                raise SystemExit(f"{archive}: {digest} is damaged")
            return data

        index = json.load(image.extractfile("index.json"))
        manifest = json.loads(blob(index["manifests"][0]))
        config = json.loads(blob(manifest["config"]))
        [layer] = manifest["layers"]
        content = blob(layer)
    user = config["config"]["User"].split(":")[0]
    if not user.isdigit() or user == "0":
        raise SystemExit(f"{archive}: runs as {user or 'root'}")
    data = gzip.decompress(content) if layer["mediaType"].endswith("+gzip") else content
    with tarfile.open(fileobj=io.BytesIO(data)) as root:
        root.extractall(folder, numeric_owner=True)


if __name__ == "__main__":
    main()
