// node validate_gltf.js VALIDATOR FILE...: what the format's own validator says of glTF files, as JSON: one list of
// messages for each file.
const fs = require('fs');
const path = require('path');
const validator = require(process.argv[2]);

async function messagesOf(file) {
    const beside = uri => Promise.resolve(new Uint8Array(fs.readFileSync(path.join(path.dirname(file), decodeURIComponent(uri)))));
    const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)),
        { uri: path.basename(file), maxIssues: 0, externalResourceFunction: beside });
    return report.issues.messages;
}

Promise.all(process.argv.slice(3).map(messagesOf)).then(all => console.log(JSON.stringify(all)));
