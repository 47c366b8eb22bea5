#!/bin/sh
# Holds the scenes that orvo writes against the Khronos glTF validator: every example machine as GLB
# and as text, standing still and in motion.
#
#   scripts/validate-gltf.sh ORVO FOLDER              installs the validator first where it is missing
#   scripts/validate-gltf.sh --installed ORVO FOLDER  ends with 77 where it, or node, is missing
#
# ORVO is the program, FOLDER is made and replaced. The validator, in the version below, lies in
# build/gltf-validator; npm fetches it. An error or a warning of the validator is a failure.
set -eu

version=2.0.0-dev.3.10

installed_only=no
if [ "${1-}" = --installed ]; then
  installed_only=yes
  shift
fi
if [ $# -ne 2 ]; then
  echo "validate-gltf.sh: the program orvo and a folder are needed" >&2
  exit 2
fi
orvo=$1
folder=$2
root=$(cd "$(dirname "$0")/.." && pwd)
tools=$root/build/gltf-validator

if ! command -v node >/dev/null 2>&1; then
  echo "skipped: there is no node to run the glTF validator with"
  exit 77
fi
package=$tools/node_modules/gltf-validator/package.json
if ! grep -q "\"version\": \"$version\"" "$package" 2>/dev/null; then
  if [ "$installed_only" = yes ]; then
    echo "skipped: the glTF validator isn't there; scripts/validate-gltf.sh installs it"
    exit 77
  fi
  mkdir -p "$tools"
  if ! (cd "$tools" && npm install --no-save --no-package-lock --no-audit --no-fund \
    --ignore-scripts --prefix . "gltf-validator@$version"); then
    echo "skipped: the glTF validator can't be installed"
    exit 77
  fi
fi

rm -rf "$folder"
mkdir -p "$folder"
for file in "$root"/examples/machines/*/*.xml; do
  name=$(basename "$file" .xml)
  "$orvo" convert "$file" "$folder/$name.glb"
  "$orvo" convert "$file" "$folder/$name.gltf"
  "$orvo" convert "$file" - --to gltf >"$folder/${name}_embedded.gltf"
  # A motion of all axes: turns of more than a half in a step, and a pause.
  "$orvo" convert "$file" - --to json |
    python3 -c '
import json, sys
axes = [e["name"] for e in json.load(sys.stdin)["entities"]
        if e["link"]["type"] in ("LINEAR", "ROTARY") and e["register"] >= 0]
print(",".join(axes + ["inverse_time"]))
for i, value in enumerate([0, 25.5, 25.5, -260, 400]):
    print(",".join([str(value)] * len(axes) + ["120"]))
' >"$folder/$name.csv"
  "$orvo" convert "$file" "$folder/${name}_moving.glb" --animate "$folder/$name.csv"
  "$orvo" convert "$file" "$folder/${name}_moving.gltf" --animate "$folder/$name.csv"
done

NODE_PATH=$tools/node_modules node - "$folder" <<'END'
const fs = require('fs');
const path = require('path');
const validator = require('gltf-validator');

const folder = process.argv[2];
const files = fs.readdirSync(folder).filter(name => /\.(glb|gltf)$/.test(name)).sort();

async function validateAll() {
  let faultNb = 0;
  for (const name of files) {
    const report = await validator.validateBytes(
        new Uint8Array(fs.readFileSync(path.join(folder, name))), {
          uri: name,
          externalResourceFunction: uri => Promise.resolve(
              new Uint8Array(fs.readFileSync(path.join(folder, decodeURIComponent(uri))))),
        });
    const issues = report.issues;
    faultNb += issues.numErrors + issues.numWarnings;
    console.log(`${name}: ${issues.numErrors} errors, ${issues.numWarnings} warnings, ` +
                `${issues.numInfos} infos, ${report.info.totalTriangleCount} triangles, ` +
                `${report.info.animationCount} animations`);
    for (const message of issues.messages.filter(m => m.severity < 2).slice(0, 10)) {
      console.log(`  ${message.code} at ${message.pointer}: ${message.message}`);
    }
  }
  console.log(`${files.length} files, ${faultNb} faults`);
  process.exit(faultNb === 0 && files.length > 0 ? 0 : 1);
}

validateAll();
END
