// SPDX-License-Identifier: Apache-2.0
// Prints the parts of a form, a line each, as busboy reads them, which wants CR LF around the parts.
// Usage: node read-form.js CONTENT-TYPE FILE; exits with 77 without busboy
const type = process.argv[2], boundary = '--' + type.split('boundary=')[1];
let busboy;
try {
    busboy = require('busboy');
} catch {
    process.exit(77);
}

function withCRLF(body) {
    const parts = body.split(boundary + '\n').slice(1).map((part, index, all) => {
        const head = part.indexOf('\n\n'), end = index + 1 < all.length ? '\n' : '\n' + boundary + '--';
        const content = part.slice(head + 2, part.length - end.length);
        return part.slice(0, head).replaceAll('\n', '\r\n') + '\r\n\r\n' + content + '\r\n';
    });
    return parts.map(part => boundary + '\r\n' + part).join('') + boundary + '--\r\n';
}

const lines = [];
const print = (name, file, bytes) => lines.push(`${name} ${file} ${bytes.toString('hex')}`);
const reader = busboy({headers: {'content-type': type}});
reader.on('field', (name, value) => print(name, '', Buffer.from(value)));
reader.on('file', (name, stream, {filename, encoding}) => {
    const pieces = [];
    stream.on('data', piece => pieces.push(piece));
    stream.on('end', () => {
        const bytes = Buffer.concat(pieces);
        print(name, filename, encoding === 'base64' ? Buffer.from(bytes.toString(), 'base64') : bytes);
    });
});
reader.on('close', () => console.log(lines.join('\n')));
reader.end(Buffer.from(withCRLF(require('fs').readFileSync(process.argv[3], 'latin1')), 'latin1'));
